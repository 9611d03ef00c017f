// Checks a message file (text\<language>\Orbikon.txt) as Creo reads it: messages of four lines (keyword, text,
// translation or nothing, one reserved line), UTF-8 with a byte order mark or plain ASCII.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace seat {

struct MessageProblem {
    enum class Kind { encoding, groups, lineLength };
    Kind kind;
    std::string text;  // names the line
};

struct MessageFile {
    std::size_t messages = 0;  // whole ones
    bool hasMark = false;      // a byte order mark
    std::vector<MessageProblem> problems;
};

MessageFile checkMessageFile(std::string_view bytes);

}  // namespace seat
