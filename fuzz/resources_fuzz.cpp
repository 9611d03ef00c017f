// Any resource library: what comes of it is a menu file whose commands are all spelled as in one of the panes. The
// input is names and contents of resources in turn.
#include <unistd.h>

#include <cstdio>
#include <vector>

#include "common_sources/mnu/mnu_parser.h"
#include "common_sources/mnu/mnu_reader.h"
#include "common_sources/mnu/mnu_text.h"
#include "config/cnfg.h"
#include "fuzz/check.h"
#include "fuzz/texts.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string path = "/tmp/orbikon_resources_fuzz." + std::to_string(getpid());
    std::string_view rest = textOf(data, size);
    std::vector<std::string> panes;
    MNUParser parser;
    while (!rest.empty()) {
        const std::string name = takeText(rest);
        const std::string content = takeText(rest);
        if (resourceKind(name) == ResourceKind::kPane) panes.push_back(content);
        parser.AddResource(name, content);
    }
    std::remove(path.c_str());
    check(parser.WriteMNUFile(path) && parser.failure().empty());
    Cnfg file(path);
    const MenuFileContent content = readMenuFileContent(file);
    std::remove(path.c_str());

    check(content.modeNames.size() == 23);
    check(content.commands.size() >= 2);  // the plug-in's own
    for (std::size_t i = 2; i < content.commands.size(); ++i) {
        const std::string command(content.commands[i].substr(0, content.commands[i].find('*')));
        check(std::ranges::any_of(panes, [&](const std::string& pane) { return pane.find(command) != pane.npos; }));
    }
    return 0;
}
