// What a reader of the log has to know of the program that wrote it. Any thread.
#pragma once

#include <string>
#include <vector>

// A line each: version, build, the files of the plug-in and of its host, date and time with the time zone. What the
// system does not tell is left empty; throws on lack of memory only.
std::vector<std::string> programFacts();
