#include "workbench/panel/windows/texts.h"

namespace workbench {
namespace {

struct Pair {
    const wchar_t *english, *german;
};

// In the order of the enumeration.
constexpr Pair kTexts[] = {
    {L"OrbikonController", L"OrbikonController"},
    {L"Buttons", L"Tasten"},
    {L"Bindings", L"Belegung"},
    {L"Device", L"Ger\u00E4t"},
    {L"Drag: push. Right button or Ctrl: turn. Wheel or side handle: third axis. Double-click: release.",
     L"Ziehen: schieben. Rechts/Strg: drehen. Rad, Griff: dritte Achse. Doppelklick: los."},
    {L"&Hold the deflection", L"Auslenkung &halten"},
    {L"&Release", L"&Loslassen"},
    {L"Gain", L"St\u00E4rke"},
    {L"Curve", L"Kennlinie"},
    {L"No daemon. It can be started on the page \u201CDevice\u201D.",
     L"Kein Daemon. Auf der Seite \u201EGer\u00E4t\u201C kann er gestartet werden."},
    {L"No application is connected.", L"Keine Anwendung ist verbunden."},
    {L"The cap moves the view (mode %ls).", L"Die Kappe bewegt die Ansicht (Modus %ls)."},
    {L"The cap moves components, or scrolls what is under the pointer (mode %ls).",
     L"Die Kappe bewegt Komponenten oder rollt, was unter dem Zeiger liegt (Modus %ls)."},
    {L"The cap scrolls what is under the pointer (mode %ls).",
     L"Die Kappe rollt, was unter dem Zeiger liegt (Modus %ls)."},
    {L"none told", L"keiner gemeldet"},
    {L"Special buttons", L"Sondertasten"},
    {L"Front", L"Vorn"},
    {L"Right", L"Rechts"},
    {L"Bottom", L"Unten"},
    {L"Fit", L"Einpassen"},
    {L"Back", L"Hinten"},
    {L"Left", L"Links"},
    {L"Top", L"Oben"},
    {L"not bound", L"nicht belegt"},
    {L"no longer in the menu file: ", L"nicht mehr in der Men\u00FCdatei: "},
    {L" (all modes)", L" (alle Modi)"},
    {L"All modes", L"Alle Modi"},
    {L"Search in labels and commands", L"Suchen in Beschriftungen und Befehlen"},
    {L"&Bind", L"&Belegen"},
    {L"U&nbind", L"&Freigeben"},
    {L"&Undo", L"&R\u00FCckg\u00E4ngig"},
    {L"Button", L"Taste"},
    {L"Command", L"Befehl"},
    {L"Name", L"Name"},
    {L"%u found", L"%u gefunden"},
    {L"There is no menu file yet (the plug-in makes it at Creo\u2019s first start): ",
     L"Es gibt noch keine Men\u00FCdatei (das Plug-in legt sie beim ersten Start von Creo an): "},
    {L"The menu file could not be read to its end: ", L"Die Men\u00FCdatei konnte nicht bis zum Ende gelesen werden: "},
    {L"Number of devices", L"Anzahl der Ger\u00E4te"},
    {L"Rotation mode", L"Drehmodus"},
    {L"Context flag", L"Kontextschalter"},
    {L"&Apply", L"\u00DC&bernehmen"},
    {L"Daemon &dies", L"Daemon &stirbt"},
    {L"Daemon r&eturns", L"Daemon k&ommt wieder"},
    {L"Connected applications and the mode they told", L"Verbundene Anwendungen und ihr gemeldeter Modus"},
    {L"none", L"keine"},
    {L"Stop recor&ding", L"Aufnahme been&den"},
    {L"Re&cord \u2026", L"&Aufnehmen \u2026"},
};
static_assert(sizeof kTexts / sizeof kTexts[0] == static_cast<std::size_t>(Text::count));

bool isGermanWanted = false;

}  // namespace

void setGerman(bool isGerman) { isGermanWanted = isGerman; }

const wchar_t* text(Text which) {
    const Pair& pair = kTexts[static_cast<std::size_t>(which)];
    return isGermanWanted ? pair.german : pair.english;
}

}  // namespace workbench
