// The terminal's lines through libedit: emacs-style editing (or what the
// user's ~/.editrc binds) and a history of the session's lines.
#include <histedit.h>
#include <unistd.h>

#include <cstdio>

#include "interrupt.h"
#include "line_reader.h"

namespace twcalc {

namespace {

char* prompt(EditLine*) {
    static char text[] = "> ";
    return text;
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
