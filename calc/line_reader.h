// Where twcalc's lines come from: standard input read plainly, or, on a
// terminal and when built with libedit, a line editor with history.
#pragma once

#include <memory>
#include <string>

namespace twcalc {

class LineReader {
public:
    enum class Result { Line, Interrupted, End };

    virtual ~LineReader() = default;
    // The next line without its line break.  Interrupted: Ctrl-C abandoned
    // the line being typed (the flag is cleared and a fresh line begun).
    virtual Result read(std::string& line) = 0;
};

// prompt: standard input is a terminal, so each line is asked for with "> ".
std::unique_ptr<LineReader> makeLineReader(bool prompt);

// Whether lines are edited through libedit when standard input is a terminal.
bool lineEditing();

}  // namespace twcalc
