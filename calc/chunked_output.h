// Writing long results so that Ctrl-C can stop them between chunks.
#pragma once

#include <string_view>

namespace twcalc {

enum class WriteResult { Done, Interrupted, Failed };

// Writes text to the descriptor in chunks, checking the interrupt flag
// before each and after a write cut short by the signal.
WriteResult writeChunked(int fd, std::string_view text);

}  // namespace twcalc
