#include "tools/doctor/registering.h"

#include <algorithm>
#include <span>

#include "common_sources/mnu/mnu_encoding.h"
#include "tools/cli/command_line.h"
#include "tools/seat/file.h"
#include "tools/seat/load_points.h"
#include "tools/seat/registration_file.h"
#include "tools/seat/registration_targets.h"
#include "tools/seat/registration_update.h"
#include "tools/seat/text.h"
#include "tools/seat/wide_text.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace doctor {

namespace fs = std::filesystem;

namespace {

enum ExitCode { kDone = 0, kFailed = 2, kWrongArguments = 3 };

constexpr char kMachine32[] = "i486_nt";
constexpr char kMachine64[] = "x86e_win64";

constexpr cli::Option kOptions[] = {{"--load-point", true}, {"--plugin", true}, {"--text-dir", true},
                                    {"--probe", false},     {"--answer", true}, {"--drop-backup", false}};

// What a sub-command has to say. Two options are for the installer and not in the usage: --answer FILE also writes it
// as UTF-16 with a mark, for a program that cannot read UTF-8 from a pipe; --drop-backup leaves no backup of a file
// from which the entry was taken out.
class Answer {
  public:
    void say(const std::string& line) { mText += line + "\n"; }

    int give(int code, const fs::path& file) const {
        cli::print(code == kDone ? stdout : stderr, mText);
#ifdef _WIN32
        const std::wstring wide = L'\xFEFF' + seat::wideText(mText);
        const std::string_view bytes(reinterpret_cast<const char*>(wide.data()), wide.size() * sizeof(wchar_t));
        if (!file.empty() && seat::replaceFile(file, bytes)) return kFailed;
#else
        if (!file.empty() && seat::replaceFile(file, mText)) return kFailed;
#endif
        return code;
    }

  private:
    std::string mText;
};

// As Creo reads it: in the code page. Parts with letters that another machine reads differently go by their short
// names; the others keep theirs, which the next version's files will have, too.
std::string registeredPath(const fs::path& path) {
    fs::path written;
    for (const fs::path& part : fs::absolute(path)) {
        written /= part;
#ifdef _WIN32
        wchar_t shorter[MAX_PATH] = L"";
        const bool isAscii = seat::isAscii(seat::textOf(part));
        const DWORD size = isAscii ? 0 : GetShortPathNameW(written.c_str(), shorter, MAX_PATH);
        if (size > 0 && size < MAX_PATH) written.replace_filename(fs::path(shorter).filename());
#endif
    }
    return codePageFromUtf8(seat::textOf(written.make_preferred()));
}

std::string machineTypeOf(const fs::path& loadPoint) {
    std::string type = seat::findHost(loadPoint).machineType;
    if (!type.empty()) return type;
    std::error_code ignored;
    for (const char* folder : {kMachine32, kMachine64}) {
        if (fs::is_directory(loadPoint / folder, ignored)) return folder;
    }
    return {};
}

// In an installation the doctor lies in "tools", in a build folder beside the plug-in.
fs::path libraryNear(const fs::path& program, const std::string& library, const std::string& machineType) {
    const fs::path folder = program.parent_path();
    const fs::path installed = folder.parent_path() / (machineType == kMachine64 ? "x64" : "x86") / library;
    std::error_code ignored;
    return fs::exists(installed, ignored) ? installed : folder / library;
}

fs::path textDirOf(const fs::path& plugin) {
    const fs::path folder = plugin.parent_path();
    std::error_code ignored;
    return fs::is_directory(folder / "text", ignored) ? folder : folder.parent_path();
}

class Registering {
  public:
    Registering(const cli::ParsedArguments& arguments, fs::path program)
        : mArguments(arguments),
          mProgram(std::move(program)),
          mId(arguments.has("--probe") ? seat::kProbeId : seat::kPluginId) {}

    int enter() {
        const std::string machineType = mLoadPoint.empty() ? kMachine32 : machineTypeOf(mLoadPoint);
        if (machineType.empty()) {
            return fail("no Creo was found in " + seat::textOf(mLoadPoint) +
                        "; name the folder \"Common Files\" of an installation");
        }
        fs::path library = seat::pathOf(mArguments.value("--plugin"));
        if (library.empty()) library = libraryNear(mProgram, mId.library, machineType);
        fs::path textDir = seat::pathOf(mArguments.value("--text-dir"));
        if (textDir.empty()) textDir = textDirOf(fs::absolute(library));
        std::error_code ignored;
        if (!fs::exists(library, ignored)) {
            return fail("there is no " + std::string(isProbe() ? "probe " : "plug-in ") + seat::textOf(library));
        }

        const auto files = mFile.empty() ? seat::registrationTargets(mLoadPoint) : std::vector<fs::path>(1, mFile);
        if (const int code = checkWriting(files); code != kDone) return code;
        const auto fields = seat::registrationOf(mId, registeredPath(library), registeredPath(textDir));
        int code = updateAll(files, [&](const fs::path& file) { return seat::registerApplication(file, mId, fields); });
        if (mFile.empty() && code == kDone) code = takeOutOfOthers(files);
        return code;
    }

    int takeOut() {
        const bool isBackupDropped = mArguments.has("--drop-backup");
        return updateAll(mFile.empty() ? seat::registrationFilesOf(mLoadPoint) : std::vector<fs::path>(1, mFile),
                         [&](const fs::path& file) {
                             auto result = takeOutOf(file);
                             std::error_code ignored;
                             const bool isWritten = result.outcome == seat::RegistrationUpdate::Outcome::written;
                             if (isBackupDropped && isWritten) fs::remove(seat::registrationBackup(file), ignored);
                             return result;
                         });
    }

    int run(const std::string& command) {
        const auto& operands = mArguments.operands;
        if (operands.size() == 1) mFile = fs::absolute(seat::pathOf(operands.front()));
        mLoadPoint = seat::pathOf(mArguments.value("--load-point"));
        if (operands.size() > 1 || mFile.empty() == mLoadPoint.empty()) {
            cli::print(stderr, "orbikon_doctor: " + command + " needs one file, or --load-point DIR\n");
            return kWrongArguments;
        }
        const int code = command == "register" ? enter() : takeOut();
        return mAnswer.give(code, seat::pathOf(mArguments.value("--answer")));
    }

  private:
    bool isProbe() const { return mArguments.has("--probe"); }

    seat::RegistrationUpdate takeOutOf(const fs::path& file) const { return seat::unregisterApplication(file, mId); }

    int fail(const std::string& text) {
        mAnswer.say(text);
        return kFailed;
    }

    // Before the first one is written.
    int checkWriting(const std::vector<fs::path>& files) {
        for (const fs::path& file : files) {
            std::error_code ignored;
            const auto problem = fs::exists(file, ignored) ? seat::rewritingProblem(file) : std::nullopt;
            if (problem) return fail(seat::textOf(file) + " cannot be written: " + *problem);
        }
        return kDone;
    }

    // Two files of different names are both read: the library would be started twice.
    int takeOutOfOthers(const std::vector<fs::path>& files) {
        auto others = seat::registrationFilesOf(mLoadPoint);
        std::erase_if(others, [&](const fs::path& file) { return std::ranges::find(files, file) != files.end(); });
        return updateAll(others, [&](const fs::path& file) { return takeOutOf(file); });
    }

    template <typename Update>
    int updateAll(const std::vector<fs::path>& files, const Update& update) {
        int code = kDone;
        for (const fs::path& file : files) {
            const seat::RegistrationUpdate result = update(file);
            mAnswer.say(result.text);
            if (result.outcome == seat::RegistrationUpdate::Outcome::failed) code = kFailed;
        }
        return code;
    }

    const cli::ParsedArguments& mArguments;
    fs::path mProgram;
    seat::ApplicationId mId;
    fs::path mFile;
    fs::path mLoadPoint;
    Answer mAnswer;
};

// A line for each: machine type, tab, folder. Those that are named are told even when no Creo is there.
int tellLoadPoints(const cli::ParsedArguments& arguments) {
    std::vector<fs::path> loadPoints;
    for (const std::string& name : arguments.operands) loadPoints.push_back(seat::pathOf(name));
    if (loadPoints.empty()) loadPoints = seat::findLoadPoints(seat::programFolders());
    Answer answer;
    for (fs::path& loadPoint : loadPoints) {
        const std::string type = machineTypeOf(loadPoint);
        answer.say((type.empty() ? "unknown" : type) + "\t" + seat::textOf(loadPoint.make_preferred()));
    }
    return answer.give(kDone, seat::pathOf(arguments.value("--answer")));
}

}  // namespace

std::optional<int> runRegistering(const std::vector<std::string>& arguments, const fs::path& program) {
    constexpr std::string_view kCommands[] = {"register", "unregister", "load-points"};
    if (arguments.empty() || std::ranges::find(kCommands, arguments.front()) == std::end(kCommands))
        return std::nullopt;
    const cli::ParsedArguments parsed = cli::parse({arguments.begin() + 1, arguments.end()}, kOptions);
    if (!parsed.problem.empty()) {
        cli::print(stderr, "orbikon_doctor: " + parsed.problem + "\n");
        return kWrongArguments;
    }
    if (arguments.front() == "load-points") return tellLoadPoints(parsed);
    return Registering(parsed, program).run(arguments.front());
}

}  // namespace doctor
