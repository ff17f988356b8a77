// The terminal's lines through libedit: emacs-style editing (or what the
// user's ~/.editrc binds) and a history of the session's lines.
#include <histedit.h>
#include <sys/select.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cwchar>

#include "interrupt.h"
#include "line_reader.h"

namespace twcalc {

namespace {

char* prompt(EditLine*) {
    static char text[] = "> ";
    return text;
}

// The editor's key reader.  libedit's own retries a read that a signal
// broke, so a Ctrl-C at the prompt could be lost until the next key; this
// one waits with SIGINT blocked except inside pselect, so a press either
// comes before the check or breaks the wait, and then the read fails (-1)
// and el_gets returns at once.
int readKey(EditLine*, wchar_t* key) {
    std::mbstate_t state{};
    sigset_t interrupt, others;
    sigemptyset(&interrupt);
    sigaddset(&interrupt, SIGINT);
    for (;;) {
        pthread_sigmask(SIG_BLOCK, &interrupt, &others);
        int ready = -1;
        if (!interruptRequested()) {
            fd_set input;
            FD_ZERO(&input);
            FD_SET(STDIN_FILENO, &input);
            ready = pselect(STDIN_FILENO + 1, &input, nullptr, nullptr, nullptr, &others);
        }
        const int waitError = errno;
        pthread_sigmask(SIG_SETMASK, &others, nullptr);
        if (interruptRequested()) return -1;
        if (ready < 0) {
            if (waitError == EINTR) continue;
            return -1;
        }
        char byte = 0;
        const ssize_t got = read(STDIN_FILENO, &byte, 1);
        if (got == 0) return 0;
        if (got < 0) {
            if (errno == EINTR) continue;
            return -1;
        }
        wchar_t wide = 0;
        const std::size_t used = std::mbrtowc(&wide, &byte, 1, &state);
        if (used == std::size_t(-2)) continue;  // more bytes of one character to come
        if (used == std::size_t(-1)) {  // not a character of the locale: the byte as it is
            *key = wchar_t(static_cast<unsigned char>(byte));
            return 1;
        }
        *key = wide;
        return 1;
    }
}

class EditLineReader : public LineReader {
public:
    EditLineReader() {
        // The prompt and the echo go where the results go, unless those are
        // redirected away from the terminal.
        output_ = isatty(STDOUT_FILENO) ? stdout : stderr;
        editor_ = el_init("twcalc", stdin, output_, stderr);
        history_ = history_init();
        history(history_, &event_, H_SETSIZE, 1000);
        history(history_, &event_, H_SETUNIQUE, 1);
        el_set(editor_, EL_PROMPT, prompt);
        el_set(editor_, EL_EDITOR, "emacs");
        el_set(editor_, EL_HIST, history, history_);
        el_set(editor_, EL_GETCFN, readKey);
        el_source(editor_, nullptr);
    }
    ~EditLineReader() override {
        el_end(editor_);
        history_end(history_);
    }

    Result read(std::string& line) override {
        int count = 0;
        const char* text = el_gets(editor_, &count);
        if (text == nullptr || count <= 0) {
            // Ctrl-C makes the read fail (count -1); Ctrl-D on an empty line
            // and the end of input give no text (count 0).
            if (!interruptRequested()) return Result::End;
            clearInterrupt();
            el_reset(editor_);
            std::fputs("\n", output_);
            std::fflush(output_);
            return Result::Interrupted;
        }
        line.assign(text, std::size_t(count));
        while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.pop_back();
        if (line.find_first_not_of(" \t") != std::string::npos) history(history_, &event_, H_ENTER, line.c_str());
        return Result::Line;
    }

private:
    FILE* output_;
    EditLine* editor_;
    History* history_;
    HistEvent event_;
};

}  // namespace

std::unique_ptr<LineReader> makeEditLineReader() { return std::make_unique<EditLineReader>(); }

}  // namespace twcalc
