; The installer. packaging/package.sh calls makensis with
;   VERSION     1.0.0
;   FILES       generated: a macro Files_<component> for each component
;   DOCTOR      the doctor's program, used while installing and removing
;   ROOT        the source tree
;   OUTPUT      the installer to make
;   SIGN        optional: a command that signs the file named behind it
;
; Nothing in the folder is touched before everything is known to be replaceable: files go to a folder of their own first
; and take the places of older ones in a second step that can be taken back. What is installed is listed in
; installation.ini, the only thing that upgrade and removal go by.
;
; The parts are in installer/, by concern; here is their order.
;
; Exit codes: 0 done, 1 cancelled, 2 failed, 3 files in use.
Unicode true
SetCompressor /SOLID zlib
SetDateSave off
AllowSkipFiles off
RequestExecutionLevel user
ManifestSupportedOS all
Name "Orbikon plug-in for Creo"
OutFile "${OUTPUT}"
BrandingText "Orbikon plug-in for Creo ${VERSION}"
ShowInstDetails nevershow
ShowUninstDetails nevershow

!include MUI2.nsh
!include LogicLib.nsh
!include FileFunc.nsh
!include nsDialogs.nsh
!include Sections.nsh
!include x64.nsh
!include "${FILES}"

!define HERE "${ROOT}\packaging\installer"
!define PRODUCT "Orbikon plug-in for Creo"
!define PUBLISHER "The developers of the Orbikon plug-in for Creo"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\OrbikonCreo"
!define FOLDER "OrbikonController\Creo"
!define MANIFEST "installation.ini"
!define STAGING "$INSTDIR\new-files"
!define NEW "$PLUGINSDIR\new.ini"  ; the manifest while it comes into being
!define OLD "$INSTDIR\${MANIFEST}"
!define DOCTOR_NOW "$PLUGINSDIR\orbikon_doctor.exe"

!define EXIT_CANCELLED 1
!define EXIT_FAILED 2
!define EXIT_IN_USE 3

VIProductVersion "${VERSION}.0"
VIFileVersion "${VERSION}.0"
VIAddVersionKey /LANG=1033 ProductName "${PRODUCT}"
VIAddVersionKey /LANG=1033 CompanyName "${PUBLISHER}"
VIAddVersionKey /LANG=1033 FileDescription "Installer of the ${PRODUCT}"
VIAddVersionKey /LANG=1033 FileVersion "${VERSION}"
VIAddVersionKey /LANG=1033 ProductVersion "${VERSION}"
VIAddVersionKey /LANG=1033 LegalCopyright "MIT licence"
VIAddVersionKey /LANG=1033 OriginalFilename "orbikon-creo-${VERSION}-setup.exe"

Var IsForUser        ; 1: for this user only, without rights
Var LogName          ; file of /LOG=, empty for none
Var NamedLoadPoints  ; of /LOADPOINT=, separated by semicolons
Var HasLoadPoints    ; 1: /LOADPOINT= was given, with or without a value
Var NamedComponents  ; of /COMPONENTS=, separated by commas
Var SettingsRemoved  ; uninstaller: 1 when the user's settings go, too
Var Problem          ; why an argument or a load point will not do; empty: all is well
Var List             ; control of the page
Var SettingsBox      ; control of the uninstaller's page

; ---- pages ----

!define MUI_ICON "${ROOT}\packaging\orbikon.ico"
!define MUI_UNICON "${ROOT}\packaging\orbikon.ico"
!define MUI_ABORTWARNING
; Titles need three lines in French.
!define MUI_WELCOMEPAGE_TITLE_3LINES
!insertmacro MUI_PAGE_WELCOME
!insertmacro MUI_PAGE_LICENSE "${LICENCE}"
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_DIRECTORY
Page custom ShowLoadPoints LeaveLoadPoints
!insertmacro MUI_PAGE_INSTFILES
!define MUI_FINISHPAGE_TEXT "$(Installed)$\r$\n$INSTDIR$\r$\n$\r$\n$(FinishText)"
!define MUI_FINISHPAGE_TEXT_LARGE
!define MUI_FINISHPAGE_RUN
!define MUI_FINISHPAGE_RUN_TEXT "$(CheckSeat)"
!define MUI_FINISHPAGE_RUN_FUNCTION CheckSeat
!define MUI_PAGE_CUSTOMFUNCTION_SHOW ShowFinish
!define MUI_FINISHPAGE_TITLE_3LINES
!insertmacro MUI_PAGE_FINISH

!define MUI_WELCOMEPAGE_TITLE_3LINES
!insertmacro MUI_UNPAGE_WELCOME
UninstPage custom un.ShowSettings un.LeaveSettings
!insertmacro MUI_UNPAGE_INSTFILES
!define MUI_FINISHPAGE_TITLE_3LINES
!insertmacro MUI_UNPAGE_FINISH

!insertmacro MUI_LANGUAGE English
!insertmacro MUI_LANGUAGE German
!insertmacro MUI_LANGUAGE French
!include "${HERE}\texts.nsh"

!ifdef SIGN
  !finalize '${SIGN} "%1"'
  !uninstfinalize '${SIGN} "%1"'
!endif

!include "${HERE}\macros.nsh"
!include "${HERE}\shared.nsh"

; ---- components ----

Section "-before"
  Call CheckChoice
  ${If} $Problem != ""
    ${Fail} ${EXIT_FAILED} "$Problem"
  ${EndIf}
  Call CheckAll
  ; Of a run that was cut off.
  RMDir /r "${STAGING}"
  ClearErrors
  CreateDirectory "${STAGING}"
  ${If} ${Errors}
    ${Fail} ${EXIT_FAILED} "$(NotWritable) $INSTDIR"
  ${EndIf}
  !insertmacro Files_base
SectionEnd

Section "$(Plugin32)" plugin32
  !insertmacro Files_plugin32
SectionEnd

Section "$(Plugin64)" plugin64
  !insertmacro Files_plugin64
SectionEnd

Section "$(Tools)" tools
  !insertmacro Files_tools
SectionEnd

Section "$(Documents)" documents
  !insertmacro Files_documents
SectionEnd

Section /o "$(Simulator)" simulator
  !insertmacro Files_simulator
SectionEnd

Section "-after"
  SetOutPath "${STAGING}"
  WriteUninstaller "${STAGING}\uninstall.exe"
  Push "uninstall.exe"
  Call NoteFile
  ${If} $IsForUser == 1
    Call PrepareForUser
  ${EndIf}
  SetOutPath "$INSTDIR"
  Call TakePlaces
  Call RemoveFormer
  Call Unregister
  Call WriteManifest
  Call Register
  Call EnterInPrograms
  ${Log} "$(Done) $INSTDIR"
  SetErrorLevel 0
SectionEnd

!insertmacro MUI_FUNCTION_DESCRIPTION_BEGIN
  !insertmacro MUI_DESCRIPTION_TEXT ${plugin32} "$(Plugin32Text)"
  !insertmacro MUI_DESCRIPTION_TEXT ${plugin64} "$(Plugin64Text)"
  !insertmacro MUI_DESCRIPTION_TEXT ${tools} "$(ToolsText)"
  !insertmacro MUI_DESCRIPTION_TEXT ${documents} "$(DocumentsText)"
  !insertmacro MUI_DESCRIPTION_TEXT ${simulator} "$(SimulatorText)"
!insertmacro MUI_FUNCTION_DESCRIPTION_END

; ---- before the pages ----

Function .onInit
  InitPluginsDir
  File "/oname=${DOCTOR_NOW}" "${DOCTOR}"
  ; Written as UTF-16, so that names of any script are kept.
  FileOpen $0 "${NEW}" w
  FileWriteUTF16LE /BOM $0 "[installation]$\r$\n"
  FileClose $0

  Call ReadArguments
  ${If} $Problem != ""
    ${Fail} ${EXIT_FAILED} "$Problem"
  ${EndIf}
  Call ChooseScope
  Call ChooseFolder
  Call CheckScope
  Call ChooseComponents
  Call ChooseLoadPoints
FunctionEnd

; Behind the sections, whose numbers they name.
!include "${HERE}\files.nsh"
!include "${HERE}\registering.nsh"
!include "${HERE}\choices.nsh"
!include "${HERE}\load_points.nsh"
!include "${HERE}\finish.nsh"
!include "${HERE}\uninstaller.nsh"
