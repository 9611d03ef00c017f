// What the tour leaves behind: its scenes and steps with what was measured, and the page that shows them.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace workbench {

// A line of a step's table. Lines without an expectation only tell.
struct Measure {
    std::string what;
    std::string before;
    std::string after;
    std::string expected;  // what makes the check pass, in words or numbers; "" = nothing is checked
    bool isOk = true;
};

struct Shot {
    std::string file;  // beside the page
    std::string caption;
    int width = 0, height = 0;  // pixels
    struct Point {
        int x = 0, y = 0;
    };
    std::optional<Point> pointer;  // where the mouse pointer was, in the picture; copies of the screen leave it out
    int earlierStep = 0;           // whose picture is the same and has this file; 0 when there is none
};

struct Step {
    int number = 0;
    std::string title;
    std::string action;  // what was done
    std::vector<Measure> measures;
    std::vector<Shot> shots;
    std::string excerpt;  // of a file, shown as it is
    std::string failure;  // what kept the step from coming to its end

    void tell(std::string what, std::string before, std::string after);
    void check(std::string what, std::string before, std::string after, std::string expected, bool isOk);
    bool isOk() const;
};

struct SceneRecord {
    std::string name;
    std::string title;
    std::string text;
    std::vector<Step> steps;
};

struct BuildFacts {
    std::string commit;
    std::string compiler;
    std::string plugin;  // file, size and time of what was loaded
};

struct Record {
    std::string started;  // date and time
    double seconds = 0;
    BuildFacts build;
    std::vector<SceneRecord> scenes;

    int stepCount() const;
    int checkCount() const;
    int failedSteps() const;
    int failedChecks() const;
};

// Writes the page. Throws std::runtime_error when it cannot be written.
void writePage(const Record& record, const std::filesystem::path& file);

}  // namespace workbench
