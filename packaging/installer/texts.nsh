; Texts of the installer, in each of its languages.
!macro Text NAME ENGLISH GERMAN FRENCH
  LangString ${NAME} ${LANG_ENGLISH} "${ENGLISH}"
  LangString ${NAME} ${LANG_GERMAN} "${GERMAN}"
  LangString ${NAME} ${LANG_FRENCH} "${FRENCH}"
!macroend
!define Text "!insertmacro Text"

${Text} Plugin32 "Plug-in, 32 bit" "Plug-in, 32 Bit" "Module, 32 bits"
${Text} Plugin32Text "For Creo of machine type i486_nt (Creo Parametric 3.0, 32 bit)." \
  "Für Creo mit Maschinentyp i486_nt (Creo Parametric 3.0, 32 Bit)." \
  "Pour Creo de type de machine i486_nt (Creo Parametric 3.0, 32 bits)."
${Text} Plugin64 "Plug-in, 64 bit" "Plug-in, 64 Bit" "Module, 64 bits"
${Text} Plugin64Text "For Creo of machine type x86e_win64." "Für Creo mit Maschinentyp x86e_win64." \
  "Pour Creo de type de machine x86e_win64."
${Text} Tools "Tools" "Werkzeuge" "Outils"
${Text} ToolsText "The doctor, which checks a seat, and the maker of menu files." \
  "Der Doktor, der einen Arbeitsplatz prüft, und das Programm für Menüdateien." \
  "Le docteur, qui vérifie un poste, et le programme qui fait les fichiers de menus."
${Text} Documents "Documents" "Dokumente" "Documents"
${Text} DocumentsText "Guides for users and administrators." "Anleitungen für Anwender und Administratoren." \
  "Guides de l'utilisateur et de l'administrateur."
${Text} Simulator "Simulator" "Simulator" "Simulateur"
${Text} SimulatorText "Stand-ins for the device's driver library and daemon, for trying things without a device." \
  "Ersatz für Treiberbibliothek und Dienst des Geräts, zum Ausprobieren ohne Gerät." \
  "Remplaçants de la bibliothèque pilote et du service, pour essayer sans le périphérique."

${Text} LoadPointsTitle "Installations of Creo" "Creo-Installationen" "Installations de Creo"
${Text} LoadPointsSubtitle "Where the plug-in is to be registered." "Wo das Plug-in eingetragen werden soll." \
  "Où le module doit être enregistré."
${Text} LoadPointsText "The plug-in is entered in the registration file of each of these load points \
(folders $\"Common Files$\")." "Das Plug-in wird in die Registrierungsdatei jedes dieser Ladepunkte (Ordner \
$\"Common Files$\") eingetragen." "Le module est inscrit dans le fichier d'enregistrement de chacun de ces points de \
chargement (dossiers $\"Common Files$\")."
${Text} AddButton "&Add ..." "&Hinzufügen ..." "&Ajouter ..."
${Text} RemoveButton "&Remove" "&Entfernen" "&Enlever"
${Text} ChooseLoadPoint "The folder $\"Common Files$\" of an installation of Creo" \
  "Der Ordner $\"Common Files$\" einer Creo-Installation" "Le dossier $\"Common Files$\" d'une installation de Creo"

${Text} Installed "The plug-in is installed in" "Das Plug-in ist installiert in" "Le module est installé dans"
${Text} FinishText "It is there when Creo is started next." "Beim nächsten Start von Creo ist es da." \
  "Il sera là au prochain démarrage de Creo."
${Text} FinishForUser "It needs a line in Creo's config.pro, which registration.txt in this folder tells." \
  "Es braucht eine Zeile in config.pro von Creo; sie steht in registration.txt in diesem Ordner." \
  "Il lui faut une ligne dans config.pro de Creo, indiquée par registration.txt dans ce dossier."
${Text} CheckSeat "Check this seat" "Diesen Arbeitsplatz prüfen" "Vérifier ce poste"

${Text} ForUserText "The plug-in was installed for one user. Creo finds it by this line in its configuration file \
config.pro:" "Das Plug-in wurde für einen Benutzer installiert. Creo findet es durch diese Zeile in der \
Konfigurationsdatei config.pro:" "Le module a été installé pour un seul utilisateur. Creo le trouve grâce à cette ligne \
du fichier de configuration config.pro :"
${Text} For32 "Creo, 32 bit (i486_nt):" "Creo, 32 Bit (i486_nt):" "Creo, 32 bits (i486_nt) :"
${Text} For64 "Creo, 64 bit (x86e_win64):" "Creo, 64 Bit (x86e_win64):" "Creo, 64 bits (x86e_win64) :"

${Text} SettingsTitle "Settings" "Einstellungen" "Réglages"
${Text} SettingsSubtitle "What is to become of your settings." "Was mit Ihren Einstellungen geschehen soll." \
  "Ce que vos réglages doivent devenir."
${Text} SettingsText "Your settings, menu file and log stay for a later installation, in" \
  "Einstellungen, Menüdatei und Protokoll bleiben für eine spätere Installation erhalten, in" \
  "Vos réglages, le fichier de menus et le journal restent pour une installation ultérieure, dans"
${Text} SettingsRemove "Remove my settings, too" "Auch meine Einstellungen entfernen" "Enlever aussi mes réglages"

${Text} UnknownArgument "Unknown argument:" "Unbekanntes Argument:" "Argument inconnu :"
${Text} UnknownComponent "Components are plugin32, plugin64, tools, documents and simulator, not:" \
  "Komponenten sind plugin32, plugin64, tools, documents und simulator, nicht:" \
  "Les composants sont plugin32, plugin64, tools, documents et simulator, et non :"
${Text} NeedsRights "This needs the rights of an administrator. /CURRENTUSER installs for the current user without them." \
  "Dafür sind Administratorrechte nötig. /CURRENTUSER installiert ohne sie für den aktuellen Benutzer." \
  "Il faut les droits d'administrateur. /CURRENTUSER installe sans eux pour l'utilisateur actuel."
${Text} OnlyForUser "Without the rights of an administrator the plug-in can be installed for you alone. Go on so?" \
  "Ohne Administratorrechte kann das Plug-in nur für Sie installiert werden. So fortfahren?" \
  "Sans les droits d'administrateur, le module peut être installé pour vous seul. Continuer ainsi ?"
${Text} Elsewhere "The plug-in is installed in another folder; remove it there first, or leave the folder out:" \
  "Das Plug-in ist in einem anderen Ordner installiert; entfernen Sie es dort oder lassen Sie den Ordner weg:" \
  "Le module est installé dans un autre dossier ; enlevez-le d'abord, ou omettez le dossier :"
${Text} OtherScope "Here it is installed for one user, and not for all, or the other way round; remove it first:" \
  "Hier ist es für einen Benutzer statt für alle installiert oder umgekehrt; entfernen Sie es zuerst:" \
  "Ici, il est installé pour un utilisateur et non pour tous, ou l'inverse ; enlevez-le d'abord :"
${Text} InUse "A program uses this file. End Creo and try again:" \
  "Ein Programm benutzt diese Datei. Beenden Sie Creo und versuchen Sie es erneut:" \
  "Un programme utilise ce fichier. Quittez Creo et réessayez :"
${Text} NotWritable "Cannot be written, nothing was changed:" "Nicht beschreibbar, nichts wurde geändert:" \
  "Impossible d'écrire, rien n'a été changé :"
${Text} NotRegistered "The files are installed, but the plug-in could not be registered in" \
  "Die Dateien sind installiert, aber das Plug-in konnte nicht eingetragen werden in" \
  "Les fichiers sont installés, mais le module n'a pas pu être enregistré dans"
${Text} NotUnregistered "The plug-in could not be taken out of" "Das Plug-in konnte nicht ausgetragen werden aus" \
  "Le module n'a pas pu être retiré de"
${Text} NoCreo "No Creo was found in this load point:" "In diesem Ladepunkt wurde kein Creo gefunden:" \
  "Aucun Creo n'a été trouvé dans ce point de chargement :"
${Text} NoPlugin "Choose at least one of the two plug-ins." "Wählen Sie mindestens eines der beiden Plug-ins." \
  "Choisissez au moins un des deux modules."
${Text} NeedsPlugin32 "This load point needs the 32-bit plug-in:" "Dieser Ladepunkt braucht das 32-Bit-Plug-in:" \
  "Ce point de chargement a besoin du module 32 bits :"
${Text} NeedsPlugin64 "This load point needs the 64-bit plug-in:" "Dieser Ladepunkt braucht das 64-Bit-Plug-in:" \
  "Ce point de chargement a besoin du module 64 bits :"
${Text} NoManifest "The list of installed files is missing:" "Die Liste der installierten Dateien fehlt:" \
  "La liste des fichiers installés manque :"
${Text} Done "Installed in" "Installiert in" "Installé dans"
${Text} Removed "Removed." "Entfernt." "Enlevé."
${Text} CopyFirst "Copy the uninstaller elsewhere to run it with _?=." \
  "Kopieren Sie das Deinstallationsprogramm an einen anderen Ort, um es mit _?= auszuführen." \
  "Copiez le programme de désinstallation ailleurs pour l'exécuter avec _?=."
