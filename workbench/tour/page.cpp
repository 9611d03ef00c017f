#include "workbench/tour/page.h"

#include <algorithm>
#include <cmath>
#include <sstream>

#include "workbench/control/workbench.h"

namespace workbench {
namespace {

constexpr const char* kStyle = R"(
:root { color-scheme: light; --ok: #1c7c3c; --bad: #b3261e; --line: #d9dee5; --soft: #f4f6f9; --ink: #1d2530; }
* { box-sizing: border-box; }
body { margin: 0; font: 16px/1.5 "Segoe UI", "Helvetica Neue", Arial, sans-serif; color: var(--ink); background: #fff; }
header, main, footer { max-width: 1240px; margin: 0 auto; padding: 0 24px; }
header { padding-top: 32px; }
h1 { font-size: 30px; margin: 0 0 4px; }
h2 { font-size: 22px; margin: 48px 0 6px; padding-top: 16px; border-top: 3px solid var(--ink); }
h3 { font-size: 17px; margin: 0 0 6px; }
p { margin: 4px 0 10px; max-width: 80ch; }
.verdict { display: inline-block; margin: 14px 0; padding: 8px 16px; border-radius: 6px; color: #fff; font-weight: 600; }
.ok { color: var(--ok); } .bad { color: var(--bad); font-weight: 600; }
.verdict.ok { background: var(--ok); color: #fff; } .verdict.bad { background: var(--bad); color: #fff; }
.facts { display: grid; grid-template-columns: max-content 1fr; gap: 2px 16px; font-size: 14px; color: #4b5665; }
.facts dt { font-weight: 600; } .facts dd { margin: 0; overflow-wrap: anywhere; }
nav ol { columns: 2; padding-left: 24px; font-size: 15px; }
article { border: 1px solid var(--line); border-radius: 8px; margin: 18px 0; padding: 16px 18px; }
article.failed { border: 2px solid var(--bad); }
table { border-collapse: collapse; font-size: 14px; margin: 8px 0; width: 100%; }
th, td { text-align: left; padding: 4px 12px 4px 0; border-bottom: 1px solid var(--line); vertical-align: top; }
td { font-variant-numeric: tabular-nums; overflow-wrap: anywhere; }
th { font-weight: 600; color: #4b5665; }
td:last-child, th:last-child { padding-right: 0; text-align: right; white-space: nowrap; }
.shots { display: grid; grid-template-columns: repeat(auto-fit, minmax(min(100%, 480px), 1fr)); gap: 16px; }
.shots.many { grid-template-columns: repeat(auto-fit, minmax(min(100%, 340px), 1fr)); }
figure { margin: 10px 0 0; }
figcaption { font-size: 14px; color: #4b5665; margin-top: 4px; }
.frame { position: relative; display: block; border: 1px solid var(--line); }
.frame img { display: block; width: 100%; height: auto; }
.pointer { position: absolute; width: 26px; height: 26px; margin: -13px 0 0 -13px; border: 3px solid #e0245e;
  border-radius: 50%; box-shadow: 0 0 0 2px #fff; }
pre { background: var(--soft); padding: 12px; overflow-x: auto; font-size: 13px; line-height: 1.4; }
footer { margin: 48px auto 32px; font-size: 14px; color: #4b5665; }
)";
constexpr std::size_t kManyShots = 3;

std::string escaped(const std::string& text) {
    std::string safe;
    for (const char c : text) {
        switch (c) {
            case '&':
                safe += "&amp;";
                break;
            case '<':
                safe += "&lt;";
                break;
            case '>':
                safe += "&gt;";
                break;
            case '"':
                safe += "&quot;";
                break;
            default:
                safe += c;
        }
    }
    return safe;
}

const char* verdict(bool isOk) { return isOk ? "<span class=ok>ok</span>" : "<span class=bad>FAILED</span>"; }

double percent(int part, int whole) { return 100.0 * part / std::max(whole, 1); }

void writeMeasures(std::ostream& out, const Step& step) {
    if (step.measures.empty()) return;
    out << "<table><thead><tr><th>Measured<th>Before<th>After<th>Expected<th>Check</tr></thead><tbody>\n";
    for (const Measure& m : step.measures) {
        out << "<tr><td>" << escaped(m.what) << "<td>" << escaped(m.before) << "<td>" << escaped(m.after) << "<td>"
            << escaped(m.expected) << "<td>" << (m.expected.empty() ? "" : verdict(m.isOk)) << "</tr>\n";
    }
    out << "</tbody></table>\n";
}

void writeShots(std::ostream& out, const Step& step) {
    out << "<div class=\"shots" << (step.shots.size() > kManyShots ? " many" : "") << "\">\n";
    for (const Shot& shot : step.shots) {
        const std::string file = escaped(shot.file);
        if (shot.earlierStep != 0 && !shot.pointer) {  // shown once
            out << "<figure><figcaption>" << escaped(shot.caption) << " The picture is that of <a href=\"#step"
                << shot.earlierStep << "\">step " << shot.earlierStep << "</a>.</figcaption></figure>\n";
            continue;
        }
        out << "<figure><a class=frame href=\"" << file << "\"><img loading=lazy src=\"" << file
            << "\" width=" << shot.width << " height=" << shot.height << " alt=\""
            << escaped(step.title + ": " + shot.caption) << "\">";
        if (shot.pointer) {
            out << "<span class=pointer style=\"left:" << percent(shot.pointer->x, shot.width)
                << "%;top:" << percent(shot.pointer->y, shot.height) << "%\"></span>";
        }
        out << "</a><figcaption>" << escaped(shot.caption)
            << (shot.pointer ? " (The ring, drawn by this page, marks the mouse pointer.)" : "")
            << "</figcaption></figure>\n";
    }
    out << "</div>\n";
}

void writeStep(std::ostream& out, const Step& step) {
    out << "<article id=step" << step.number << (step.isOk() ? "" : " class=failed") << ">\n<h3>" << step.number << ". "
        << escaped(step.title) << " &ndash; " << verdict(step.isOk()) << "</h3>\n<p>" << escaped(step.action)
        << "</p>\n";
    if (!step.failure.empty()) out << "<p class=bad>" << escaped(step.failure) << "</p>\n";
    writeMeasures(out, step);
    if (!step.excerpt.empty()) out << "<pre>" << escaped(step.excerpt) << "</pre>\n";
    writeShots(out, step);
    out << "</article>\n";
}

bool isSceneOk(const SceneRecord& scene) { return std::ranges::all_of(scene.steps, &Step::isOk); }

void writeHead(std::ostream& out, const Record& record) {
    const int failed = record.failedSteps();
    out << "<!DOCTYPE html>\n<html lang=en><head><meta charset=utf-8>\n"
           "<meta name=viewport content=\"width=device-width, initial-scale=1\">\n"
           "<title>OrbikonController in Creo: tour</title>\n<style>"
        << kStyle
        << "</style></head><body>\n<header><h1>OrbikonController in Creo: tour</h1>\n"
           "<p>The plug-in at work in the workbench: the real plug-in DLL in a running host program, with a running "
           "device daemon. Every picture is a copy of the screen, with a small cap drawn in while the device's cap was "
           "deflected: its arrows and numbers are what the daemon had then. Every number was asked of the host, the "
           "daemon, a window or a file.</p>\n<div class=\"verdict "
        << (failed == 0 ? "ok" : "bad") << "\">";
    if (failed == 0) {
        out << "All " << record.stepCount() << " steps had their effect: " << record.checkCount() << " checks passed";
    } else {
        out << failed << " of " << record.stepCount() << " steps did not have their effect: " << record.failedChecks()
            << " of " << record.checkCount() << " checks failed";
    }
    out << "</div>\n<dl class=facts><dt>Played<dd>" << escaped(record.started) << ", " << std::lround(record.seconds)
        << " seconds<dt>Build<dd>" << escaped(record.build.commit) << ", " << escaped(record.build.compiler)
        << "<dt>Plug-in<dd>" << escaped(record.build.plugin) << "</dl>\n<nav><ol>\n";
    for (const SceneRecord& scene : record.scenes) {
        out << "<li><a href=\"#" << escaped(scene.name) << "\">" << escaped(scene.title) << "</a> "
            << verdict(isSceneOk(scene)) << "\n";
    }
    out << "</ol></nav></header>\n<main>\n";
}

}  // namespace

void Step::tell(std::string what, std::string before, std::string after) {
    measures.push_back({std::move(what), std::move(before), std::move(after), {}, true});
}

void Step::check(std::string what, std::string before, std::string after, std::string expected, bool isGood) {
    measures.push_back({std::move(what), std::move(before), std::move(after), std::move(expected), isGood});
}

bool Step::isOk() const { return failure.empty() && std::ranges::all_of(measures, &Measure::isOk); }

int Record::stepCount() const {
    int count = 0;
    for (const SceneRecord& scene : scenes) count += static_cast<int>(scene.steps.size());
    return count;
}

int Record::checkCount() const {
    int count = 0;
    for (const SceneRecord& scene : scenes) {
        for (const Step& step : scene.steps) {
            count += static_cast<int>(
                         std::ranges::count_if(step.measures, [](const auto& m) { return !m.expected.empty(); })) +
                     (step.failure.empty() ? 0 : 1);
        }
    }
    return count;
}

int Record::failedSteps() const {
    int count = 0;
    for (const SceneRecord& scene : scenes) {
        count += static_cast<int>(std::ranges::count(scene.steps, false, &Step::isOk));
    }
    return count;
}

int Record::failedChecks() const {
    int count = 0;
    for (const SceneRecord& scene : scenes) {
        for (const Step& step : scene.steps) {
            count += static_cast<int>(std::ranges::count(step.measures, false, &Measure::isOk)) +
                     (step.failure.empty() ? 0 : 1);
        }
    }
    return count;
}

void writePage(const Record& record, const std::filesystem::path& file) {
    std::ostringstream out;
    writeHead(out, record);
    for (const SceneRecord& scene : record.scenes) {
        out << "<section id=\"" << escaped(scene.name) << "\"><h2>" << escaped(scene.title) << "</h2>\n<p>"
            << escaped(scene.text) << "</p>\n";
        for (const Step& step : scene.steps) writeStep(out, step);
        out << "</section>\n";
    }
    out << "</main>\n<footer>The steps can be played again with <code>./run</code>; a step whose check fails makes it "
           "end with an error.</footer>\n</body></html>\n";
    writeTextFile(file, out.str());
}

}  // namespace workbench
