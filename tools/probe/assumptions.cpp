// The rows. A row's place in the plug-in is the file to change when the row does not hold.
#include "tools/probe/assumptions.h"

#include <algorithm>

namespace probe {

namespace {

struct FunctionUse {
    const char* name;
    const char* file;
    const char* consequence;
};
constexpr const char* kProxy = "common_sources/creo_proxy.cpp";
constexpr const char* kMotion = "common_sources/creo_motion.cpp";
constexpr const char* kMode = "common_sources/creo_mode.cpp";
constexpr const char* kCommand = "common_sources/creo_command.cpp";
constexpr const char* kMapkey = "common_sources/creo_mapkey.cpp";
constexpr const char* kTimer = "common_sources/creo_timer.cpp";
constexpr const char* kScroll = "common_sources/creo_scroll.cpp";
constexpr const char* kAddin = "common_sources/ob_addin.cpp";
constexpr const char* kToolkit = "toolkit/pro_toolkit.h";
constexpr const char* kBinding = "driver/binding.cpp";
constexpr const char* kDriver = "driver/obk_ctrlr.h";
constexpr const char* kLegacy = "common_sources/legacy_com1.cpp";
constexpr const char* kDaemon = "common_sources/daemon_proxy.cpp";

constexpr FunctionUse kFunctions[] = {
    {"ProCmdOptionAdd", kProxy, "there are no toggles in Creo's menu"},
    {"ProCmdChkbuttonValueSet", kProxy, "the toggles' check marks do not follow their state"},
    {"ProCmdDesignate", kProxy, "the toggles cannot be put on Creo's tool bars"},
    {"ProMenubarMenuAdd", kProxy, "there is no menu \"Orbikon\""},
    {"ProMenubarmenuChkbuttonAdd", kProxy, "the menu \"Orbikon\" is empty"},
    {"ProNotificationSet", kProxy, "a change of mode is not noticed unless readMode is on"},
    {"ProNotificationUnset", kProxy, "Creo calls handlers after the plug-in's end"},
    {"ProModeCurrentGet", kMode, "the mode stays unknown: no component moves, buttons are those of \"Default\""},
    {"ProSectionIsActive", kMode, "an open sketch counts as the part that it belongs to"},
    {"ProWindowCurrentGet", kMode, "an access check may take another window's mode for the current one"},
    {"ProWindowRefresh", kMotion, "moved components are shown late"},
    {"ProMdlCurrentGet", kMotion, "no component moves"},
    {"ProSelbufferSelectionsGet", kMotion, "no component moves"},
    {"ProSelectionarrayFree", kMotion, "Creo's memory grows with each step of a move"},
    {"ProArraySizeGet", kMotion, "no component moves"},
    {"ProSelectionAsmcomppathGet", kMotion, "no component moves"},
    {"ProFeatureInit", kMotion, "no component moves"},
    {"ProAssemblyDynPosSet", kMotion, "each step of a move is a step to undo, or none is made"},
    {"ProAsmcompPositionGet", kMotion, "no component moves"},
    {"ProAsmcompPositionSet", kMotion, "no component moves"},
    {"ProAsmcompRegenerate", kMotion, "moved components are shown in their old places"},
    {"ProViewMatrixGet", kMotion, "no component moves, since the screen's axes are not known"},
    {"ProViewMatrixSet", kCommand, "the device's buttons for standard views do nothing"},
    {"ProViewRefit", kCommand, "the device's button for fitting the view does nothing"},
    {"ProVectorTrfEval", kMotion, "no component moves, since the screen's axes are not known"},
    {"ProMacroLoad", kCommand, "buttons run no commands with useMapkeyForCommands off"},
    {"ProConfigoptSet", kMapkey, "buttons run commands as macros, which cost the undo stack"},
};

using enum Task;

const std::vector<Assumption>& others() {
    static const std::vector<Assumption> kRows = {
        {"entry.arguments", "user_initialize is handed argc, argv, version, build and 80 wide characters for an error.",
         "user_initialize bekommt argc, argv, Version, Build und 80 breite Zeichen für eine Fehlermeldung.", kAddin,
         "none today: the plug-in takes no arguments; no error text could be handed to Creo",
         "the pointers are readable, the buffer is writable", start},
        {"entry.thread", "user_initialize runs on the thread that owns Creo's main window.",
         "user_initialize läuft auf dem Thread, dem Creos Hauptfenster gehört.", kTimer,
         "no window is found for the timer: cap and buttons do nothing", "the thread's top-level windows are counted",
         start},
        {"entry.stack", "Creo calls with a stack that is aligned to 4 bytes at least (64 bit: 16).",
         "Creo ruft mit einem auf mindestens 4 Bytes ausgerichteten Stapel auf (64 Bit: 16).", "cmake/Options.cmake",
         "Creo crashes in the plug-in's callbacks", "the address of the arguments in each callback", start},
        {"entry.texts", "Narrow texts that Creo hands over are in the process code page.",
         "Schmale Texte von Creo sind in der Zeichenkodierung des Prozesses.", kProxy,
         "texts with umlauts are garbled; registration field unicode_encoding",
         "the arguments' bytes: plain ASCII, which both readings share, or no UTF-8 of another code page", start},

        {"callbacks.thread", "Actions, value, access and notification callbacks come on Creo's user-interface thread.",
         "Alle Rückrufe kommen auf dem Oberflächen-Thread von Creo.", kProxy,
         "the plug-in's state is used by two threads at once", "the thread of every callback", openMenu},
        {"callbacks.access", "Creo asks a command's access callback when its menu is opened.",
         "Creo fragt beim Öffnen des Menüs, ob ein Befehl verfügbar ist.", kProxy,
         "Toggle Move Mode stays as it was at the start; lost windows are found late",
         "access callbacks are counted, with their arguments", openMenu},
        {"callbacks.value", "The pointer that comes with a value callback is good for ProCmdChkbuttonValueSet.",
         "Der Zeiger eines Wert-Rückrufs taugt für ProCmdChkbuttonValueSet.", kProxy,
         "the toggles' check marks do not follow their state", "the result of ProCmdChkbuttonValueSet in the callback",
         openMenu},

        {"mode.assembly", "In an assembly ProModeCurrentGet answers 5.",
         "In einer Baugruppe antwortet ProModeCurrentGet 5.", kMode,
         "no component moves, and buttons bound for assemblies do nothing; kAssemblyMode in creo_proxy.h",
         "the number while the user says so, or while a component is selected", assembly},
        {"mode.part", "In a part ProModeCurrentGet answers 1.", "In einem Teil antwortet ProModeCurrentGet 1.", kMode,
         "buttons bound for parts do nothing; [Modes] in common_sources/mnu/mnu_own_entries.h",
         "the number while the user says so", part},
        {"mode.sketch", "While a sketch is open ProSectionIsActive answers 1, else 0.",
         "ProSectionIsActive antwortet 1, solange eine Skizze offen ist, sonst 0.", kMode,
         "buttons bound for the sketcher do nothing", "the answer while the user says so, and in part and assembly",
         sketch},
        {"mode.drawing", "In a drawing ProModeCurrentGet answers 6.",
         "In einer Zeichnung antwortet ProModeCurrentGet 6.", kMode,
         "buttons bound for drawings do nothing; [Modes] in common_sources/mnu/mnu_own_entries.h",
         "the number while the user says so", drawing},

        {"notify.set", "ProNotificationSet takes the types 24, 41, 18, 72 and 73.",
         "ProNotificationSet nimmt die Typen 24, 41, 18, 72 und 73.", kProxy,
         "a change of mode is not noticed unless readMode is on", "the result of each call", start},
        {"notify.window", "One of 24, 41, 18 arrives when another model or window becomes the current one.",
         "24, 41 oder 18 kommt, wenn ein anderes Modell oder Fenster das aktuelle wird.", kProxy,
         "a change of mode is noticed at the next opening of a menu, unless readMode is on",
         "the types that came within two seconds of a change", changeWindow},
        {"notify.sketch", "72 or 73 arrives when a sketch is opened or left.",
         "72 oder 73 kommt, wenn eine Skizze geöffnet oder verlassen wird.", kProxy,
         "the sketcher's buttons are not those that work", "the types that came within two seconds of a change",
         sketch},

        {"view.record", "ProViewMatrixGet fills sixteen doubles and nothing beside them.",
         "ProViewMatrixGet füllt sechzehn Gleitkommazahlen und nichts daneben.", kToolkit,
         "memory of Creo is overwritten at each step of a move", "marks around the record", start},
        {"view.convention", "The view's matrix has the shift in its fourth row; its fourth column is 0 0 0 1.",
         "Die Matrix der Ansicht hat die Verschiebung in der vierten Zeile; ihre vierte Spalte ist 0 0 0 1.", kMotion,
         "components move along wrong axes", "which of the two lines is 0 0 0 1", start},
        {"view.scale", "Its first three rows are at right angles and of one length, the view's scale.",
         "Ihre ersten drei Zeilen stehen senkrecht aufeinander und sind gleich lang: der Maßstab.", kMotion,
         "components move along axes that are not the screen's", "lengths and products of the rows", start},
        {"view.vector", "ProVectorTrfEval answers in x matrix, without the shift.",
         "ProVectorTrfEval antwortet Vektor x Matrix, ohne die Verschiebung.", kMotion,
         "components move along wrong axes", "a matrix and a vector whose product is known", start},
        {"view.axes", "The rows of the inverse are the screen's axes in the model.",
         "Die Zeilen der Inversen sind die Achsen des Bildschirms im Modell.", kMotion,
         "components do not follow the cap's direction",
         "the inverse's rows, turned by ProVectorTrfEval with the view's matrix, are right, up and towards the viewer",
         start},
        {"view.set", "ProViewMatrixSet takes a matrix with rows of length 1, and the view then has these axes.",
         "ProViewMatrixSet nimmt eine Matrix mit Zeilen der Länge 1; die Ansicht hat dann diese Achsen.", kCommand,
         "the device's buttons for standard views show something else", "set to what it is, and read again", view},
        {"view.rejects", "ProViewMatrixSet refuses rows of length 2.", "ProViewMatrixSet lehnt Zeilen der Länge 2 ab.",
         kCommand, "none today: the plug-in hands over rows of length 1 only", "the result, and the view put back",
         view},

        {"selection.empty", "With nothing selected ProSelbufferSelectionsGet answers -4.",
         "Ist nichts ausgewählt, antwortet ProSelbufferSelectionsGet -4.", kMotion,
         "the cap is taken from the view though nothing is selected, when an array is handed out",
         "result and pointer while the user says so", selectNothing},
        {"selection.size", "ProArraySizeGet answers the number of selections.",
         "ProArraySizeGet antwortet die Zahl der Auswahlen.", kMotion, "no component moves",
         "1 or more, and no nonsense", selectComponent},
        {"selection.path", "ProSelectionAsmcomppathGet answers 1 to 25 identifiers for a component.",
         "ProSelectionAsmcomppathGet antwortet 1 bis 25 Bezeichner für eine Komponente.", kMotion, "no component moves",
         "the number in the record", selectComponent},
        {"selection.owner", "The path's owner is the current model.", "Der Besitzer des Pfads ist das aktuelle Modell.",
         kMotion, "components of another window are moved", "compared with ProMdlCurrentGet", selectComponent},
        {"selection.component", "The path's first identifier names the top-level component.",
         "Der erste Bezeichner des Pfads nennt die Komponente der obersten Ebene.", kMotion, "no component moves",
         "ProFeatureInit and ProAsmcompPositionGet take it", selectComponent},
        {"selection.position", "A component's position has the origin in its fourth row, and axes of length 1.",
         "Die Lage einer Komponente hat den Ursprung in der vierten Zeile und Achsen der Länge 1.", kMotion,
         "components are turned about wrong points and torn", "which line is 0 0 0 1; lengths of the rows",
         selectComponent},
        {"selection.free", "ProSelectionarrayFree takes the array back.",
         "ProSelectionarrayFree nimmt das Feld zurück.", kMotion, "Creo's memory grows with each step of a move",
         "the result", selectComponent},
        {"records.path", "ProSelectionAsmcomppathGet writes nothing beside the record (108 bytes; 64 bit: 112).",
         "ProSelectionAsmcomppathGet schreibt nichts neben den Satz (108 Bytes; 64 Bit: 112).", kToolkit,
         "memory of Creo is overwritten", "marks around the record", selectComponent},
        {"records.feature", "ProFeatureInit fills type, identifier and owner and nothing beside them.",
         "ProFeatureInit füllt Typ, Bezeichner und Besitzer und nichts daneben.", kToolkit,
         "memory of Creo is overwritten, or no component moves", "marks around the record, its fields",
         selectComponent},
        {"records.position", "ProAsmcompPositionGet fills sixteen doubles and nothing beside them.",
         "ProAsmcompPositionGet füllt sechzehn Gleitkommazahlen und nichts daneben.", kToolkit,
         "memory of Creo is overwritten", "marks around the record", selectComponent},

        {"move.dynamic", "ProAssemblyDynPosSet switches dynamic positioning on and off.",
         "ProAssemblyDynPosSet schaltet das dynamische Platzieren ein und aus.", kMotion,
         "each step of a move is a step to undo, or none is made", "both results", move},
        {"move.set", "ProAsmcompPositionSet moves a component by one unit.",
         "ProAsmcompPositionSet bewegt eine Komponente um eine Einheit.", kMotion, "no component moves",
         "the position read again", move},
        {"move.regenerate", "ProAsmcompRegenerate with 1 succeeds on a moved component.",
         "ProAsmcompRegenerate mit 1 gelingt für eine bewegte Komponente.", kMotion,
         "moved components are shown in their old places", "the result", move},
        {"move.refresh", "ProWindowRefresh shows it within dynamic positioning's end.",
         "ProWindowRefresh zeigt sie nach dem Ende des dynamischen Platzierens.", kMotion,
         "moved components are shown late", "the result, for the window of ProWindowCurrentGet", move},
        {"move.back", "A component put back is where it was, to the last bit.",
         "Eine zurückgestellte Komponente steht bis aufs letzte Bit wie vorher.", kMotion,
         "positions drift with long moves", "all sixteen numbers", move},
        {"move.undo", "All moves within one dynamic positioning are one step to undo.",
         "Alle Bewegungen während eines dynamischen Platzierens sind ein Schritt zum Rückgängigmachen.", kMotion,
         "a push of the cap is many steps to undo, or none", "the user looks", undoAfterMove},

        {"macro.queued", "A macro of ProMacroLoad runs when control is back with Creo.",
         "Ein Makro von ProMacroLoad läuft, wenn die Kontrolle wieder bei Creo ist.", kCommand,
         "a command runs inside a tick of the timer, and may end the plug-in there",
         "whether a command of the probe ran inside ProMacroLoad", macros},
        {"macro.runs", "The macro text \"~ Command `NAME`;\" runs a command.",
         "Der Makrotext \"~ Command `NAME`;\" führt einen Befehl aus.", "common_sources/command_text.cpp",
         "buttons run no commands", "the probe's own commands within five seconds", macros},
        {"macro.order", "Of two macros the one that was loaded last runs first.",
         "Von zwei Makros läuft das zuletzt geladene zuerst.", kCommand,
         "none today: one macro is loaded in a tick; two buttons pressed at once run in the other order",
         "two macros loaded one behind the other", macros},
        {"macro.undo", "A macro costs Creo's undo stack.", "Ein Makro kostet Creo den Stapel zum Rückgängigmachen.",
         kMapkey, "the way by mapkey and trail file is not needed", "the user looks", undoAfterMacros},
        {"mapkey.set", "ProConfigoptSet defines a mapkey in the running Creo.",
         "ProConfigoptSet vereinbart ein Tastenkürzel im laufenden Creo.", kMapkey,
         "buttons run commands as macros, which cost the undo stack", "the result", mapkey},
        {"mapkey.plays", "Its keys, posted to the main window, play the trail file.",
         "Seine Tasten, ans Hauptfenster geschickt, spielen die Trail-Datei ab.", kMapkey,
         "buttons do nothing with useMapkeyForCommands on", "the probe's own command within five seconds", mapkey},
        {"mapkey.undo", "Mapkey and trail file keep Creo's undo stack.",
         "Tastenkürzel und Trail-Datei erhalten den Stapel zum Rückgängigmachen.", kMapkey,
         "buttons cost the undo stack, as macros do", "the user looks", undoAfterMapkey},

        {"windows.first", "The first top-level window that Windows names of Creo's thread is Creo's main window.",
         "Das erste Fenster, das Windows zu Creos Thread nennt, ist Creos Hauptfenster.", kTimer,
         "the mapkey's keys go to another window; the timer ends with it",
         "it is visible and holds the graphics window", start},
        {"windows.graphics", "A window of class PGLWindow is below a top-level window of Creo's thread.",
         "Unter einem Hauptfenster von Creos Thread liegt ein Fenster der Klasse PGLWindow.", kTimer,
         "the windows are searched anew at every callback, and the timer is armed anew each time",
         "all windows of the thread", start},
        {"pointer.tree", "The model tree's class is SysTreeView32, TreeView or Tree.",
         "Der Modellbaum hat die Klasse SysTreeView32, TreeView oder Tree.", kScroll,
         "the cap does not scroll the tree", "the class of the resting pointer's window", restTree},
        {"pointer.list", "Lists are of class SysListView32, ListBox or List.",
         "Listen haben die Klasse SysListView32, ListBox oder List.", kScroll, "the cap does not scroll lists",
         "the class of the resting pointer's window", restList},
        {"pointer.browser", "The browser is of class Internet Explorer_Server.",
         "Der Browser hat die Klasse Internet Explorer_Server.", kScroll, "the cap does not scroll the browser",
         "the class of the resting pointer's window", restBrowser},
        {"pointer.toolbar", "Tool bars are of class ToolbarWindow32.",
         "Symbolleisten haben die Klasse ToolbarWindow32.", kScroll, "the cap does not scroll tool bars",
         "the class of the resting pointer's window", restToolbar},
        {"pointer.graphics", "The class of the window that shows the model is none of those that are scrolled.",
         "Das Fenster mit dem Modell ist von keiner Klasse, die gerollt wird.", kScroll,
         "the cap scrolls where it should move view and components", "the class of the resting pointer's window",
         restGraphics},
        {"scroll.bars", "Trees and lists tell their range, and go by a line at WM_VSCROLL.",
         "Bäume und Listen nennen ihren Bereich und gehen bei WM_VSCROLL um eine Zeile.", kScroll,
         "the cap does not scroll trees and lists", "a line down and up, and the position", scrollBars},
        {"scroll.thread", "The window that gets the wheel belongs to Creo's own thread.",
         "Das Fenster, das das Mausrad bekommt, gehört Creos eigenem Thread.", kScroll,
         "a step of scrolling may wait a tenth of a second for the other thread", "the window's thread", scrollWheel},
        {"scroll.wheel", "What has no scroll bars goes by WM_MOUSEWHEEL.",
         "Was keine Rollbalken hat, geht bei WM_MOUSEWHEEL.", kScroll, "the cap does not scroll the browser",
         "the user looks", wheelMoved},

        {"timers.first-window", "A timer on the first top-level window of the thread arrives.",
         "Ein Zeitgeber auf dem ersten Fenster des Threads kommt an.", kTimer, "cap and buttons do nothing",
         "five ticks of a timer as the plug-in's", start},
        {"timers.period", "While Creo rests, a timer of 100 ms comes every 80 to 200 ms.",
         "Solange Creo ruht, kommt ein Zeitgeber von 100 ms alle 80 bis 200 ms.", kTimer,
         "buttons act late, and the move stutters at its start", "the median of twenty ticks", start},
        {"timers.work", "While the user works, no tick is later than a second.",
         "Während der Arbeit kommt kein Tick später als eine Sekunde.", kTimer,
         "the cap reacts late; maxContMoveTime bounds what the plug-in itself takes",
         "the longest pause between two ticks", work},

        {"resources.libraries", "text\\compiled_resource above Creo's executable has the main and a language library.",
         "text\\compiled_resource über Creos Programm enthält die Haupt- und eine Sprachbibliothek.",
         "common_sources/load_point.cpp", "no menu file is made, and buttons run no commands", "files of these names",
         start},
        {"resources.panes", "The main library names its panes NAME_PANE.RES and holds text.",
         "Die Hauptbibliothek nennt ihre Menüs NAME_PANE.RES und enthält Text.", "common_sources/mnu/mnu_text.cpp",
         "the menu file has no menus", "counts by resource type, and a sample", start},
        {"resources.commands", "A language library has PROCMD...TXT with a line below \"] Command.Label\".",
         "Eine Sprachbibliothek hat PROCMD...TXT mit einer Zeile unter \"] Command.Label\".",
         "common_sources/mnu/mnu_text.cpp", "the menu file has no commands", "counts by resource type, and a sample",
         start},
        {"resources.encoding", "Their texts are UTF-8.", "Ihre Texte sind UTF-8.",
         "common_sources/mnu/mnu_encoding.cpp", "umlauts in the menu file are garbled",
         "all texts are well-formed, some beyond ASCII", start},

        {"registration.file", "Creo reads our entry in one of the places that we know.",
         "Creo liest unseren Eintrag an einem der uns bekannten Orte.", "tools/seat/registration_search.cpp",
         "the doctor looks for the registration in wrong places", "which place has an entry of this library", start},
        {"registration.menu", "ProMenubarMenuAdd puts a menu beside \"Help\", and takes check buttons.",
         "ProMenubarMenuAdd legt ein Menü neben \"Help\" an, das Prüfschalter aufnimmt.", kProxy,
         "there is no menu \"Orbikon\"; the toggles are on the device's buttons only", "the results", start},
        {"messages.umlauts", "A message file in UTF-8 with byte order mark shows umlauts right.",
         "Eine Meldungsdatei in UTF-8 mit Markierung zeigt Umlaute richtig.", "text/german/Orbikon.txt",
         "the menu's texts are garbled", "the menu's text where Windows tells it, otherwise the user looks", umlauts},

        {"driver.library", "The driver library lies in the plug-in's, the host's or the system's folder.",
         "Die Treiberbibliothek liegt beim Plug-in, bei Creo oder im Systemordner.", "driver/search.cpp",
         "there is no device", "each place, with the reason", start},
        {"driver.ordinals", "It has the ten ordinals.", "Sie hat die zehn Ordinalzahlen.", kDriver,
         "operations are missing", "each ordinal", start},
        {"driver.connect", "obConnect and obGetDevNum answer 0 and find a device.",
         "obConnect und obGetDevNum antworten 0 und finden ein Gerät.", kDaemon, "there is no device", "the results",
         device},
        {"driver.records", "obGetDevInfo writes 2048 bytes at most, obGetAdvancedSettings 148.",
         "obGetDevInfo schreibt höchstens 2048 Bytes, obGetAdvancedSettings 148.", kDriver,
         "memory of Creo is overwritten at each connection", "marks around the records", device},
        {"driver.blocks", "obReadDeviceData waits for data or a short time.",
         "obReadDeviceData wartet auf Daten oder eine kurze Zeit.", kBinding,
         "the reading thread burns a core, or ends late", "thirty reads take between 0.03 and 15 s", device},
        {"legacy.option", "Option 12 (LegacyCOM1) answers 0 or 1 and can be switched.",
         "Option 12 (LegacyCOM1) antwortet 0 oder 1 und ist schaltbar.", kLegacy,
         "view and components move together, or neither", "read, switched, read, put back", device},
        {"driver.events", "Buttons send the event codes that we know.", "Tasten senden die bekannten Ereigniscodes.",
         kDaemon, "buttons do nothing", "all codes that came", buttons},
        {"axis.tx", "Pushed to the right tx is positive, and 50 to 1000.",
         "Nach rechts geschoben ist tx positiv, 50 bis 1000.", kMotion, "components move the other way, or hardly",
         "the largest values of five seconds", pushRight},
        {"axis.ty", "Lifted ty is positive, and 50 to 1000.", "Angehoben ist ty positiv, 50 bis 1000.", kMotion,
         "components move the other way, or hardly", "the largest values of five seconds", pushUp},
        {"axis.tz", "Pulled towards the user tz is positive, and 50 to 1000.",
         "Zum Benutzer gezogen ist tz positiv, 50 bis 1000.", kMotion, "components move the other way, or hardly",
         "the largest values of five seconds", pushTowards},
        {"axis.rx", "Tilted towards the user rx is positive, and 50 to 1000.",
         "Zum Benutzer gekippt ist rx positiv, 50 bis 1000.", kMotion, "components turn the other way, or hardly",
         "the largest values of five seconds", turnX},
        {"axis.ry", "Twisted to the left ry is positive, and 50 to 1000.",
         "Nach links gedreht ist ry positiv, 50 bis 1000.", kMotion, "components turn the other way, or hardly",
         "the largest values of five seconds", turnY},
        {"axis.rz", "Tilted to the left rz is positive, and 50 to 1000.",
         "Nach links gekippt ist rz positiv, 50 bis 1000.", kMotion, "components turn the other way, or hardly",
         "the largest values of five seconds", turnZ},
        {"legacy.on", "With LegacyCOM1 on, Creo's own device support moves the view.",
         "Mit LegacyCOM1 bewegt Creos eigene Geräteunterstützung die Ansicht.", kLegacy, "the view stands still",
         "the view's matrix while the cap is pushed", legacyOn},
        {"legacy.off", "With LegacyCOM1 off, the view stands still.", "Ohne LegacyCOM1 steht die Ansicht still.",
         kLegacy, "the view moves along with the components", "the view's matrix while the cap is pushed", legacyOff},
    };
    return kRows;
}

std::vector<Assumption> allRows() {
    std::vector<Assumption> rows;
    for (const auto& [name, file, consequence] : kFunctions) {
        rows.push_back({functionRow(name), "Creo's main module exports " + std::string(name) + " by this name.",
                        "Creos Hauptmodul exportiert " + std::string(name) + " unter diesem Namen.", file, consequence,
                        "the main module's exports; where it is not among them, those of all loaded modules", start});
    }
    rows.insert(rows.end(), others().begin(), others().end());
    return rows;
}

}  // namespace

const std::vector<Assumption>& assumptions() {
    static const std::vector<Assumption> kAll = allRows();
    return kAll;
}

const Assumption* findAssumption(std::string_view id) {
    const auto found = std::ranges::find(assumptions(), id, &Assumption::id);
    return found == assumptions().end() ? nullptr : &*found;
}

std::vector<std::string> toolkitFunctions() {
    std::vector<std::string> names;
    for (const auto& use : kFunctions) names.emplace_back(use.name);
    return names;
}

std::string functionRow(std::string_view function) { return "function." + std::string(function); }

}  // namespace probe
