#include "chunked_output.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "interrupt.h"

namespace twcalc {

// Small enough that a terminal shows Ctrl-C's effect at once, large enough
// that a file is written at full speed.
constexpr std::size_t kChunk = 64 * 1024;

WriteResult writeChunked(int fd, std::string_view text) {
    while (!text.empty()) {
        if (interruptRequested()) return WriteResult::Interrupted;
        const ssize_t n = ::write(fd, text.data(), std::min(text.size(), kChunk));
        if (n < 0) {
            if (errno == EINTR) continue;
            return WriteResult::Failed;
        }
        text.remove_prefix(std::size_t(n));
    }
    return WriteResult::Done;
}

}  // namespace twcalc
