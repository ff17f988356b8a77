#include "line_reader.h"

#include <unistd.h>

#include <cerrno>

#include "interrupt.h"

namespace twcalc {

#ifdef TWCALC_LIBEDIT
std::unique_ptr<LineReader> makeEditLineReader();
#endif

namespace {

// Standard input through read(2) in large blocks: no line is too long, and a
// read cut short by Ctrl-C is seen (a stream would take it for an error).
class PlainLineReader : public LineReader {
public:
    explicit PlainLineReader(bool prompt) : prompt_(prompt) {}

    Result read(std::string& line) override {
        if (prompt_) (void)::write(STDOUT_FILENO, "> ", 2);
        std::size_t scanned = start_;
        for (;;) {
            const std::size_t end = buffer_.find('\n', scanned);
            if (end != std::string::npos) {
                line.assign(buffer_, start_, end - start_);
                start_ = end + 1;
                return Result::Line;
            }
            scanned = buffer_.size();
            if (ended_) {
                if (start_ == buffer_.size()) return Result::End;
                line.assign(buffer_, start_);  // a last line without a break
                start_ = buffer_.size();
                return Result::Line;
            }
            buffer_.erase(0, start_);
            scanned -= start_;
            start_ = 0;
            char block[64 * 1024];
            const ssize_t n = ::read(STDIN_FILENO, block, sizeof block);
            if (n > 0) {
                buffer_.append(block, std::size_t(n));
            } else if (n < 0 && errno == EINTR) {
                if (!interruptRequested()) continue;
                clearInterrupt();
                buffer_.clear();
                if (prompt_) (void)::write(STDOUT_FILENO, "\n", 1);
                return Result::Interrupted;
            } else {
                ended_ = true;
            }
        }
    }

private:
    bool prompt_;
    bool ended_ = false;
    std::string buffer_;
    std::size_t start_ = 0;  // where the next line begins in buffer_
};

}  // namespace

std::unique_ptr<LineReader> makeLineReader(bool prompt) {
#ifdef TWCALC_LIBEDIT
    if (prompt) return makeEditLineReader();
#endif
    return std::make_unique<PlainLineReader>(prompt);
}

bool lineEditing() {
#ifdef TWCALC_LIBEDIT
    return true;
#else
    return false;
#endif
}

}  // namespace twcalc
