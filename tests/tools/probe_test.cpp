#include <gmock/gmock.h>

#include <cmath>
#include <nlohmann/json.hpp>
#include <set>

#include "tests/unit/scratch.h"
#include "tools/doctor/probe_report.h"
#include "tools/probe/findings.h"
#include "tools/probe/view_matrix.h"

using namespace probe;
using testing::HasSubstr;
using testing::Not;

namespace {

TEST(ProbeTable, RowsTasksAndTheNoteGoTogether) {
    const std::string note = bytesOf(FIRST_CONTACT);
    std::set<std::string> ids;
    std::set<Task> asked;
    for (const Assumption& row : assumptions()) {
        EXPECT_TRUE(ids.insert(row.id).second) << row.id;
        for (const auto* text : {&row.statement, &row.german, &row.consequence, &row.check}) {
            EXPECT_FALSE(text->empty()) << row.id;
        }
        EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(SOURCE_TREE) / row.file))
            << row.id << " " << row.file;
        const bool isFunction = row.id.starts_with("function.");
        EXPECT_THAT(note, HasSubstr(isFunction ? row.id.substr(9) : "`" + row.id + "`"));
        asked.insert(row.task);
    }
    for (std::size_t i = 0; i < tasks().size(); ++i) {
        EXPECT_EQ(static_cast<std::size_t>(tasks()[i].task), i);
        EXPECT_TRUE(asked.contains(tasks()[i].task)) << tasks()[i].title.english;
    }
    // All that the plug-in declares of the toolkit has a row.
    const std::string header = bytesOf(std::string(SOURCE_TREE) + "/toolkit/pro_toolkit.h");
    std::size_t declared = 0;
    for (auto at = header.find("PRO_TOOLKIT_API ProError "); at != header.npos;
         at = header.find("PRO_TOOLKIT_API ProError ", at + 1)) {
        ++declared;
        const auto begin = at + 25;
        EXPECT_TRUE(ids.contains(functionRow(header.substr(begin, header.find('(', at) - begin))));
    }
    EXPECT_EQ(declared, toolkitFunctions().size());
}

TEST(ProbeFindings, ReportIsCompleteAtAnyMomentAndNamesNobody) {
    ScratchFolder scratch;
    const std::filesystem::path folder = scratch.path() + "/made/by it";
    Findings findings(folder, {{"erika", "%USERNAME%"}});
    const auto report = [&] { return readReport(bytesOf(findings.reportFile().string())).value(); };
    EXPECT_EQ(report().count(Outcome::notMet), assumptions().size());

    findings.setFact("release", "30");
    findings.setFact("release", "30 M060 of Erika");
    findings.note("view.scale", "nothing yet");
    findings.tell("view.scale", true, "2.5");
    findings.tell("view.scale", true, "later");
    findings.note("view.scale", "later");
    findings.tell("mode.part", true, "1");
    findings.tell("mode.part", false, "in C:\\Users\\ERIKA\\x:\nline");
    findings.tell("mode.part", true, "too late");
    EXPECT_THROW(findings.tell("no.such", true, ""), std::invalid_argument);

    const Report now = report();
    EXPECT_THAT(now.facts, testing::ElementsAre(testing::Pair("release", "30 M060 of %USERNAME%")));
    EXPECT_EQ(now.count(Outcome::holds), 1u);
    for (const ReportRow& row : now.rows) {
        const bool isScale = row.id == "view.scale";
        EXPECT_EQ(row.evidence == "2.5", isScale);
        if (row.id != "mode.part") continue;
        EXPECT_EQ(row.outcome, Outcome::doesNotHold);
        EXPECT_EQ(row.evidence, "in C:\\Users\\%USERNAME%\\x:; line");
        EXPECT_EQ(row.todo, "Open a part");
        EXPECT_EQ(row.consequence, findAssumption("mode.part")->consequence);
    }
    const std::string text = bytesOf(findings.reportFile().string());
    EXPECT_THAT(text, HasSubstr("summary: holds 1, does not hold 1, not met yet "));
    EXPECT_LT(text.find("    so: buttons bound for parts"), text.find("All rows"));
    EXPECT_TRUE(findings.isDone(Task::part));
    EXPECT_FALSE(findings.isDone(Task::start));

    std::string problem;
    const auto json = nlohmann::json::parse(doctor::probeReport(findings.reportFile(), true, problem).value());
    EXPECT_EQ(json["rows"].size(), assumptions().size());
    EXPECT_EQ(json["summary"]["does not hold"], 1);
    EXPECT_EQ(json["facts"]["release"], "30 M060 of %USERNAME%");
    EXPECT_FALSE(doctor::probeReport(folder / "none.txt", true, problem));
    EXPECT_THAT(problem, HasSubstr("none.txt: not there"));
    writeFile((folder / "other.txt").string(), "[view.scale] holds\n");
    EXPECT_FALSE(doctor::probeReport(folder / "other.txt", false, problem));
    EXPECT_THAT(problem, HasSubstr("no report"));
}

// A call that ends Creo leaves its row in doubt; the next starts say so and leave it alone.
TEST(ProbeFindings, WhatEndedCreoIsNotTriedAgain) {
    ScratchFolder scratch;
    std::filesystem::path inDoubt;
    {
        Findings findings(scratch.path(), {});
        inDoubt = findings.inDoubtFile();
        { const Findings::Attempt attempt(findings, "view.set"); }
        EXPECT_FALSE(std::filesystem::exists(inDoubt));
        EXPECT_TRUE(findings.mayTry("view.set"));
        const Findings::Attempt again(findings, "view.set");
        EXPECT_FALSE(std::filesystem::exists(inDoubt)) << "it came back once";
        const Findings::Attempt first(findings, "view.rejects");
        { const Findings::Attempt inner(findings, "view.axes"); }
        EXPECT_EQ(bytesOf(inDoubt.string()), "view.rejects\n");
    }
    writeFile(inDoubt.string(), "view.rejects\nexception C0000005\n");  // as Creo's end leaves it
    for (int start = 0; start < 3; ++start) {
        Findings findings(scratch.path(), {});
        EXPECT_FALSE(std::filesystem::exists(inDoubt));
        EXPECT_FALSE(findings.mayTry("view.rejects"));
        EXPECT_TRUE(findings.mayTry("view.set"));
        EXPECT_EQ(findings.outcome("view.rejects"), Outcome::doesNotHold);
        findings.tell("view.rejects", true, "no");
        EXPECT_THAT(bytesOf(findings.reportFile().string()), HasSubstr("not tried any more: exception C0000005"));
    }
    writeFile(inDoubt.string(), "no.such row\n");
    EXPECT_NO_THROW(Findings(scratch.path(), {}));
}

TEST(ProbeMatrix, ConventionScaleAndAxes) {
    const double c = std::cos(0.3), s = std::sin(0.3);
    // A turn about z, enlarged three times, shifted.
    const ProMatrix row = {{3 * c, 3 * s, 0, 0}, {-3 * s, 3 * c, 0, 0}, {0, 0, 3, 0}, {400, 300, 0, 1}};
    ProMatrix column, none, sheared, broken, other;
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            column[i][j] = row[j][i];
            none[i][j] = i < 3 ? row[i][j] : (j == 3 ? 1 : 0);
            sheared[i][j] = row[i][j] + (i == 1 && j == 0 ? 0.01 : 0);
            broken[i][j] = i == 0 ? NAN : row[i][j];
        }
    }
    EXPECT_EQ(conventionOf(row), Convention::row);
    EXPECT_EQ(conventionOf(column), Convention::column);
    EXPECT_EQ(conventionOf(none), Convention::unknown);
    EXPECT_NEAR(scaleOf(row), 3, 1e-9);
    EXPECT_EQ(scaleOf(sheared), 0);
    EXPECT_EQ(scaleOf(broken), 0);
    EXPECT_FALSE(isFinite(broken));
    ASSERT_TRUE(unitRowsOfInverse(row, other));
    // Screen right is (c, -s, 0) in the model, up (s, c, 0).
    const ProMatrix axes = {{c, -s, 0, 0}, {s, c, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
    EXPECT_LT(distance(other, axes), 1e-12);
    ASSERT_TRUE(unitRows(row, other));
    EXPECT_NEAR(distance(other, axes), 2 * s, 1e-12);
    EXPECT_FALSE(unitRows(broken, other));
    EXPECT_FALSE(unitRowsOfInverse(ProMatrix{}, other));
    // Axes changed places: one term of the determinant is all there is.
    const ProMatrix cycle = {{0, 0, 2, 0}, {2, 0, 0, 0}, {0, 2, 0, 0}, {0, 0, 0, 1}};
    const ProMatrix back = {{0, 1, 0, 0}, {0, 0, 1, 0}, {1, 0, 0, 0}, {0, 0, 0, 1}};
    ASSERT_TRUE(unitRowsOfInverse(cycle, other));
    EXPECT_LT(distance(other, back), 1e-12);
    ASSERT_TRUE(unitRowsOfInverse(back, other));
    EXPECT_NEAR(distance(other, cycle), 1, 1e-12) << "of length 1 instead of 2";
}

}  // namespace
