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
!insertmacro MUI_PAGE_WELCOME
!insertmacro MUI_PAGE_LICENSE "${LICENCE}"
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_DIRECTORY
Page custom ShowLoadPoints LeaveLoadPoints
!insertmacro MUI_PAGE_INSTFILES
!define MUI_FINISHPAGE_TEXT "$(FinishText)"
!define MUI_FINISHPAGE_TEXT_LARGE
!define MUI_FINISHPAGE_RUN
!define MUI_FINISHPAGE_RUN_TEXT "$(CheckSeat)"
!define MUI_FINISHPAGE_RUN_FUNCTION CheckSeat
!define MUI_PAGE_CUSTOMFUNCTION_SHOW ShowFinish
!insertmacro MUI_PAGE_FINISH

!insertmacro MUI_UNPAGE_WELCOME
UninstPage custom un.ShowSettings un.LeaveSettings
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_UNPAGE_FINISH

!insertmacro MUI_LANGUAGE English
!insertmacro MUI_LANGUAGE German
!insertmacro MUI_LANGUAGE French
!include "${ROOT}\packaging\installer_texts.nsh"

!ifdef SIGN
  !finalize '${SIGN} "%1"'
  !uninstfinalize '${SIGN} "%1"'
!endif

; ---- what installer and uninstaller share ----

; A line for whoever watches, and for the log file.
!define Log "!insertmacro Log"
!macro Log TEXT
  DetailPrint "${TEXT}"
  ${If} $LogName != ""
    FileOpen $9 "$LogName" a
    FileSeek $9 0 END
    FileWriteUTF16LE $9 "${TEXT}$\r$\n"
    FileClose $9
  ${EndIf}
!macroend

; Ends with an exit code, after saying why.
!define Fail "!insertmacro Fail"
!macro Fail CODE TEXT
  StrCpy $8 "${TEXT}"
  ${Log} "$8"
  SetErrorLevel ${CODE}
  MessageBox MB_OK|MB_ICONSTOP "$8" /SD IDOK
  Quit
!macroend

; Runs the doctor; exit code in $0, what it says in $1.
!define RunDoctor "!insertmacro RunDoctor"
!macro RunDoctor ARGUMENTS
  nsExec::ExecToStack '"${DOCTOR_NOW}" ${ARGUMENTS}'
  Pop $0
  Pop $1
!macroend

; For each of a list in a file: ${ForEach_} LIST_FILE SECTION ... with the number in $R1 and the value in $R2.
!define Each "!insertmacro Each"
!macro Each FILE SECTION
  ReadINIStr $R0 "${FILE}" "${SECTION}" count
  StrCpy $R1 0
  ${While} $R1 < $R0
    IntOp $R1 $R1 + 1
    ReadINIStr $R2 "${FILE}" "${SECTION}" $R1
!macroend
!define EndEach '${EndWhile}'

!define Append "!insertmacro Append"
!macro Append FILE SECTION VALUE
  ReadINIStr $7 "${FILE}" "${SECTION}" count
  IntOp $7 $7 + 1
  WriteINIStr "${FILE}" "${SECTION}" count $7
  WriteINIStr "${FILE}" "${SECTION}" $7 "${VALUE}"
!macroend

!macro SharedFunctions UN

; The next of the words on the command line. In: $R8 rest of the line. Out: $R9 the word without quotes, $R8 what follows.
Function ${UN}NextWord
  StrCpy $R9 ""
  StrCpy $R7 ""  ; inside quotes
  ${While} $R8 != ""
    StrCpy $R6 $R8 1
    StrCpy $R8 $R8 "" 1
    ${If} $R6 == '"'
      ${If} $R7 == ""
        StrCpy $R7 1
      ${Else}
        StrCpy $R7 ""
      ${EndIf}
    ${ElseIf} $R6 == " "
    ${AndIf} $R7 == ""
      ${If} $R9 != ""
        Return
      ${EndIf}
    ${Else}
      StrCpy $R9 "$R9$R6"
    ${EndIf}
  ${EndWhile}
FunctionEnd

; Reads the arguments; what is not known is the problem.
Function ${UN}ReadArguments
  StrCpy $Problem ""
  ${GetParameters} $R8
  ${While} $R8 != ""
    Call ${UN}NextWord
    StrCpy $0 $R9 3
    ${If} $0 == "/D="
    ${OrIf} $0 == "_?="
      Return  ; reaches to the end of the line, and is not ours
    ${EndIf}
    Call ${UN}TakeArgument
  ${EndWhile}
FunctionEnd

Function ${UN}TakeArgument
  ${If} $R9 == ""
  ${OrIf} $R9 == "/S"
  ${OrIf} $R9 == "/NCRC"
    Return
  ${EndIf}
  ${If} $R9 == "/CURRENTUSER"
    StrCpy $IsForUser 1
    Return
  ${EndIf}
  StrCpy $0 $R9 5
  ${If} $0 == "/LOG="
    StrCpy $LogName $R9 "" 5
    Delete "$LogName"
    FileOpen $9 "$LogName" w
    FileWriteUTF16LE /BOM $9 ""
    FileClose $9
    Return
  ${EndIf}
!if "${UN}" == ""
  StrCpy $0 $R9 11
  ${If} $0 == "/LOADPOINT="
    StrCpy $NamedLoadPoints $R9 "" 11
    StrCpy $HasLoadPoints 1
    Return
  ${EndIf}
  StrCpy $0 $R9 12
  ${If} $0 == "/COMPONENTS="
    StrCpy $NamedComponents $R9 "" 12
    Return
  ${EndIf}
!else
  ${If} $R9 == "/SETTINGS=remove"
    StrCpy $SettingsRemoved 1
    Return
  ${EndIf}
!endif
  StrCpy $Problem "$(UnknownArgument) $R9"
FunctionEnd

; Makes sure that there are the rights for all users. Answers in $0: "yes", "started" (another one with the rights) or
; "no". In: $1 the program to start with the rights.
Function ${UN}AskForRights
  StrCpy $0 yes
  UserInfo::GetAccountType
  Pop $2
  ${If} $2 == "Admin"
    Return
  ${EndIf}
  StrCpy $0 no
  ${If} ${Silent}
    Return
  ${EndIf}
  ${GetParameters} $3
  ClearErrors
  ExecShell runas "$1" "$3"
  ${IfNot} ${Errors}
    StrCpy $0 started
  ${EndIf}
FunctionEnd

; Whether the file $0 can be replaced. Out: $1 "yes", "in use" or the system's error number.
Function ${UN}CheckReplacing
  StrCpy $1 yes
  ${IfNot} ${FileExists} "$0"
  ${OrIf} $0 == "$INSTDIR\uninstall.exe"  ; only this program's own
    Return
  ${EndIf}
  ; For writing, shared with nobody: a library that a process has loaded is refused.
  System::Call 'kernel32::CreateFileW(w r0, i 0x40000000, i 0, p 0, i 3, i 0x80, p 0) p .r2 ?e'
  Pop $3
  ${If} $2 = -1
    StrCpy $1 $3
    ${If} $3 = 32    ; sharing violation
    ${OrIf} $3 = 33  ; locked
    ${OrIf} $3 = 1224  ; mapped
      StrCpy $1 "in use"
    ${EndIf}
  ${Else}
    System::Call 'kernel32::CloseHandle(p r2)'
  ${EndIf}
FunctionEnd

; Goes on when all of the files that were installed can be replaced, and ends the program otherwise.
Function ${UN}CheckAll
again:
  ${Each} "${OLD}" files
    StrCpy $0 "$INSTDIR\$R2"
    Call ${UN}CheckReplacing
    ${If} $1 == "in use"
      ${Log} "$(InUse) $0"
      MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "$(InUse)$\r$\n$0" /SD IDCANCEL IDRETRY again
      SetErrorLevel ${EXIT_IN_USE}
      Quit
    ${ElseIf} $1 != yes
      ${Fail} ${EXIT_FAILED} "$(NotWritable) $0 ($1)"
    ${EndIf}
  ${EndEach}
FunctionEnd

; Takes the plug-in out of the load points of the old manifest that the new one does not have; of all when there is none.
Function ${UN}Unregister
  ${Each} "${OLD}" loadpoints
    ReadINIStr $2 "${NEW}" types "$R2"
    ${If} $2 == ""
      ${RunDoctor} 'unregister --load-point "$R2" --drop-backup'
      ${Log} "$1"
      ${If} $0 <> 0
        StrCpy $5 "$R2$\r$\n$1"
!if "${UN}" == ""
        Call KeepLoadPoints
!endif
        ${Fail} ${EXIT_FAILED} "$(NotUnregistered) $5"
      ${EndIf}
    ${EndIf}
  ${EndEach}
  ; Files of a single user's own.
  ${Each} "${OLD}" registrations
    ReadINIStr $2 "${NEW}" isregistration "$R2"
    ${If} $2 == ""
      ${RunDoctor} 'unregister "$INSTDIR\$R2" --drop-backup'
      ${Log} "$1"
      StrCpy $0 "$R2"
      Call ${UN}RemoveEmptyFolders
    ${EndIf}
  ${EndEach}
FunctionEnd

; Removes the folders above the file $0 (relative) that are empty now.
Function ${UN}RemoveEmptyFolders
  ${Do}
    ${GetParent} "$0" $0
    ${If} $0 == ""
      ${ExitDo}
    ${EndIf}
    RMDir "$INSTDIR\$0"
  ${Loop}
FunctionEnd

!macroend
!insertmacro SharedFunctions ""
!insertmacro SharedFunctions "un."

; ---- components ----

; Takes a file of the package to the staging folder and into the manifest.
!define Put "!insertmacro Put"
!macro Put FOLDER NAME SOURCE
  SetOutPath "${STAGING}\${FOLDER}"
  File "/oname=${NAME}" "${SOURCE}"
  !if "${FOLDER}" == ""
    Push "${NAME}"
  !else
    Push "${FOLDER}\${NAME}"
  !endif
  Call NoteFile
!macroend

Function NoteFile
  Pop $6
  ${Append} "${NEW}" files "$6"
  WriteINIStr "${NEW}" isnew "$6" 1
FunctionEnd

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

!macro AddName NAME
  ${If} ${SectionIsSelected} ${${NAME}}
    StrCpy $0 "$0,${NAME}"
  ${EndIf}
!macroend

; ---- installing ----

; Each new file takes its place; the older one waits beside it until all are there.
Function TakePlaces
  ${Each} "${NEW}" files
    ${GetParent} "$INSTDIR\$R2" $0
    CreateDirectory "$0"
    Delete "$INSTDIR\$R2.old"
    ClearErrors
    ${If} ${FileExists} "$INSTDIR\$R2"
      Rename "$INSTDIR\$R2" "$INSTDIR\$R2.old"
    ${EndIf}
    ${IfNot} ${Errors}
      Rename "${STAGING}\$R2" "$INSTDIR\$R2"
    ${EndIf}
    ${If} ${Errors}
      StrCpy $5 "$INSTDIR\$R2"
      Call TakeBack
      ${Fail} ${EXIT_FAILED} "$(NotWritable) $5"
    ${EndIf}
  ${EndEach}
  ${Each} "${NEW}" files
    Delete "$INSTDIR\$R2.old"
  ${EndEach}
  RMDir /r "${STAGING}"
FunctionEnd

; Those that have taken their places go back. In: $R1 the number of the one that could not.
Function TakeBack
  StrCpy $4 $R1
  ${Each} "${NEW}" files
    ${If} $R1 > $4
      ${ExitWhile}
    ${EndIf}
    ${If} ${FileExists} "$INSTDIR\$R2.old"
      Delete "$INSTDIR\$R2"
      Rename "$INSTDIR\$R2.old" "$INSTDIR\$R2"
    ${ElseIf} $R1 < $4
      Delete "$INSTDIR\$R2"
      StrCpy $0 "$R2"
      Call RemoveEmptyFolders
    ${EndIf}
  ${EndEach}
  RMDir /r "${STAGING}"
  RMDir "$INSTDIR"
FunctionEnd

; Files of the version before that this one does not have.
Function RemoveFormer
  ${Each} "${OLD}" files
    ReadINIStr $0 "${NEW}" isnew "$R2"
    ${If} $0 == ""
      Delete "$INSTDIR\$R2"
      StrCpy $0 "$R2"
      Call RemoveEmptyFolders
    ${EndIf}
  ${EndEach}
FunctionEnd

; The selected ones in $0, separated by commas.
Function ComponentNames
  StrCpy $0 ""
  !insertmacro AddName plugin32
  !insertmacro AddName plugin64
  !insertmacro AddName tools
  !insertmacro AddName documents
  !insertmacro AddName simulator
  StrCpy $0 $0 "" 1
FunctionEnd

Function WriteManifest
  WriteINIStr "${NEW}" installation version "${VERSION}"
  WriteINIStr "${NEW}" installation foruser "$IsForUser"
  Call ComponentNames
  WriteINIStr "${NEW}" installation components "$0"
  FlushINI "${NEW}"
  CopyFiles /SILENT "${NEW}" "${OLD}"
FunctionEnd

; The load points of the version before stay listed with the new files, so that another run can still take the plug-in out
; of them.
Function KeepLoadPoints
  ${Each} "${OLD}" loadpoints
    ReadINIStr $2 "${NEW}" types "$R2"
    ${If} $2 == ""
      ReadINIStr $2 "${OLD}" types "$R2"
      ${Append} "${NEW}" loadpoints "$R2"
      WriteINIStr "${NEW}" types "$R2" "$2"
    ${EndIf}
  ${EndEach}
  Call WriteManifest
FunctionEnd

; Enters the plug-in where Creo looks for it. For a single user it goes into files of its own.
Function Register
  ${Each} "${NEW}" loadpoints
    ReadINIStr $2 "${NEW}" types "$R2"
    StrCpy $3 x86
    ${If} $2 == "x86e_win64"
      StrCpy $3 x64
    ${EndIf}
    ${RunDoctor} 'register --load-point "$R2" --plugin "$INSTDIR\$3\orbikon_creo.dll" --text-dir "$INSTDIR"'
    ${Log} "$1"
    ${If} $0 <> 0
      ${Fail} ${EXIT_FAILED} "$(NotRegistered) $R2$\r$\n$1"
    ${EndIf}
  ${EndEach}
  ${Each} "${NEW}" registrations
    ${GetParent} "$R2" $3
    ${RunDoctor} 'register "$INSTDIR\$R2" --plugin "$INSTDIR\$3\orbikon_creo.dll" --text-dir "$INSTDIR"'
    ${Log} "$1"
    ${If} $0 <> 0
      ${Fail} ${EXIT_FAILED} "$(NotRegistered) $INSTDIR\$R2$\r$\n$1"
    ${EndIf}
  ${EndEach}
FunctionEnd

; Without rights no load point can be written: registration files of the user's own, one for each bit width, and a text
; that says how Creo gets to know them.
Function PrepareForUser
  FileOpen $4 "${STAGING}\registration.txt" w
  FileWriteUTF16LE /BOM $4 "$(ForUserText)$\r$\n"
  ${If} ${SectionIsSelected} ${plugin32}
    ${Append} "${NEW}" registrations "x86\protk.dat"
    WriteINIStr "${NEW}" isregistration "x86\protk.dat" 1
    FileWriteUTF16LE $4 "$\r$\n$(For32)$\r$\ntoolkit_registry_file $INSTDIR\x86\protk.dat$\r$\n"
  ${EndIf}
  ${If} ${SectionIsSelected} ${plugin64}
    ${Append} "${NEW}" registrations "x64\protk.dat"
    WriteINIStr "${NEW}" isregistration "x64\protk.dat" 1
    FileWriteUTF16LE $4 "$\r$\n$(For64)$\r$\ntoolkit_registry_file $INSTDIR\x64\protk.dat$\r$\n"
  ${EndIf}
  FileClose $4
  Push "registration.txt"
  Call NoteFile
FunctionEnd

Function EnterInPrograms
  ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
  WriteRegStr SHCTX "${UNINSTALL_KEY}" DisplayName "${PRODUCT}"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" DisplayVersion "${VERSION}"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" Publisher "${PUBLISHER}"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" DisplayIcon "$INSTDIR\uninstall.exe"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" InstallLocation "$INSTDIR"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" UninstallString '"$INSTDIR\uninstall.exe"'
  WriteRegStr SHCTX "${UNINSTALL_KEY}" QuietUninstallString '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" EstimatedSize $0
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" NoModify 1
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" NoRepair 0
FunctionEnd

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

Function ChooseScope
  ${If} $IsForUser != 1
    StrCpy $1 "$EXEPATH"
    Call AskForRights
    ${If} $0 == started
      SetErrorLevel 0
      Quit
    ${ElseIf} $0 == no
      ${If} ${Silent}
        ${Fail} ${EXIT_FAILED} "$(NeedsRights)"
      ${EndIf}
      MessageBox MB_YESNO|MB_ICONQUESTION "$(OnlyForUser)" IDYES foruser
      SetErrorLevel ${EXIT_CANCELLED}
      Quit
foruser:
      StrCpy $IsForUser 1
    ${EndIf}
  ${EndIf}
  ${If} $IsForUser == 1
    SetShellVarContext current
  ${Else}
    SetShellVarContext all
  ${EndIf}
FunctionEnd

; What is installed for one user is not replaced for all, nor the other way round.
Function CheckScope
  ${If} ${FileExists} "${OLD}"
    ReadINIStr $0 "${OLD}" installation foruser
    ${If} $0 != $IsForUser
      ${Fail} ${EXIT_FAILED} "$(OtherScope) $INSTDIR"
    ${EndIf}
  ${EndIf}
FunctionEnd

; The folder of the command line, else that of the version before, else the usual one.
Function ChooseFolder
  ReadRegStr $0 SHCTX "${UNINSTALL_KEY}" InstallLocation
  ${If} $0 != ""
  ${AndIfNot} ${FileExists} "$0\${MANIFEST}"
    StrCpy $0 ""
  ${EndIf}
  ${If} $INSTDIR == ""
    StrCpy $INSTDIR $0
  ${ElseIf} $0 != ""
  ${AndIf} $0 != $INSTDIR
    ${Fail} ${EXIT_FAILED} "$(Elsewhere) $0"
  ${EndIf}
  ${If} $INSTDIR == ""
    StrCpy $INSTDIR "$PROGRAMFILES32\${FOLDER}"
    ${If} $IsForUser == 1
      StrCpy $INSTDIR "$LOCALAPPDATA\Programs\${FOLDER}"
    ${EndIf}
  ${EndIf}
FunctionEnd

; Selects a component when $NamedComponents has it, and adds it to the list in $2.
!macro Choose NAME
  Push ",$NamedComponents,"
  Push ",${NAME},"
  Call Contains
  Pop $0
  ${If} $0 == 1
    !insertmacro SelectSection ${${NAME}}
    StrCpy $2 "$2,${NAME}"
  ${Else}
    !insertmacro UnselectSection ${${NAME}}
  ${EndIf}
!macroend

; Takes a text and a part of it from the stack; puts 1 there when it is one, else 0.
Function Contains
  Pop $R5
  Pop $R4
  StrLen $R3 $R5
  ${While} $R4 != ""
    StrCpy $R2 $R4 $R3
    ${If} $R2 == $R5
      Push 1
      Return
    ${EndIf}
    StrCpy $R4 $R4 "" 1
  ${EndWhile}
  Push 0
FunctionEnd

; Those of the command line, else those of the version before, else what suits this Windows.
Function ChooseComponents
  ${If} $NamedComponents == ""
    ReadINIStr $NamedComponents "${OLD}" installation components
  ${EndIf}
  ${If} $NamedComponents == ""
    StrCpy $NamedComponents "plugin32,tools,documents"
    ${If} ${RunningX64}
      StrCpy $NamedComponents "plugin32,plugin64,tools,documents"
    ${EndIf}
  ${EndIf}
  StrCpy $2 ""
  !insertmacro Choose plugin32
  !insertmacro Choose plugin64
  !insertmacro Choose tools
  !insertmacro Choose documents
  !insertmacro Choose simulator
  ; As many as were named must be known.
  StrLen $0 "$2"
  StrLen $1 ",$NamedComponents"
  ${If} $0 <> $1
    ${Fail} ${EXIT_FAILED} "$(UnknownComponent) $NamedComponents"
  ${EndIf}
FunctionEnd

; Those of the command line, else those of the version before, else those in the usual places.
Function ChooseLoadPoints
  ${If} $HasLoadPoints == 1
    StrCpy $R8 $NamedLoadPoints
    ${While} $R8 != ""
      Call NextLoadPoint
      ${If} $R9 != ""
        StrCpy $0 $R9
        Call AddLoadPoint
        ${If} $Problem != ""
          ${Fail} ${EXIT_FAILED} "$Problem"
        ${EndIf}
      ${EndIf}
    ${EndWhile}
    Return
  ${EndIf}
  ${If} ${FileExists} "${OLD}"
    ${Each} "${OLD}" loadpoints
      StrCpy $0 $R2
      Push $R0
      Push $R1
      Call AddLoadPoint  ; one that is gone is left out
      Pop $R1
      Pop $R0
    ${EndEach}
    Return
  ${EndIf}
  ${If} $IsForUser != 1
    Call FindLoadPoints
  ${EndIf}
FunctionEnd

; In: $R8 the list. Out: $R9 its first member, $R8 the others.
Function NextLoadPoint
  StrCpy $R9 ""
  ${While} $R8 != ""
    StrCpy $R6 $R8 1
    StrCpy $R8 $R8 "" 1
    ${If} $R6 == ";"
      Return
    ${EndIf}
    StrCpy $R9 "$R9$R6"
  ${EndWhile}
FunctionEnd

Function FindLoadPoints
  ${RunDoctor} 'load-points --answer "$PLUGINSDIR\found.txt"'
  Call TakeAnswer
FunctionEnd

; Adds the load point $0. $Problem says why not.
Function AddLoadPoint
  StrCpy $Problem ""
  StrCpy $1 $0 1 -1
  ${If} $1 == "\"
    StrCpy $0 $0 -1
  ${EndIf}
  StrCpy $R4 $0
  ${RunDoctor} 'load-points "$R4" --answer "$PLUGINSDIR\found.txt"'
  Call TakeAnswer
FunctionEnd

; Adds the load points that the doctor has told.
Function TakeAnswer
  FileOpen $3 "$PLUGINSDIR\found.txt" r
  FileReadWord $3 $4  ; the mark
  ${Do}
    ClearErrors
    FileReadUTF16LE $3 $4
    ${If} ${Errors}
      ${ExitDo}
    ${EndIf}
    Call TakeLine
  ${Loop}
  FileClose $3
FunctionEnd

; A line "machine type, tab, load point" in $4.
Function TakeLine
  StrCpy $5 ""
  ${Do}
    StrCpy $6 $4 1
    StrCpy $4 $4 "" 1
    ${If} $6 == "$\t"
    ${OrIf} $6 == ""
      ${ExitDo}
    ${EndIf}
    StrCpy $5 "$5$6"
  ${Loop}
  ${Do}
    StrCpy $6 $4 1 -1
    ${If} $6 == "$\n"
    ${OrIf} $6 == "$\r"
      StrCpy $4 $4 -1
    ${Else}
      ${ExitDo}
    ${EndIf}
  ${Loop}
  ${If} $4 == ""
    Return
  ${EndIf}
  ${If} $5 == unknown
    StrCpy $Problem "$(NoCreo) $4"
    Return
  ${EndIf}
  ReadINIStr $6 "${NEW}" types "$4"
  ${If} $6 == ""
    ${Append} "${NEW}" loadpoints "$4"
  ${EndIf}
  WriteINIStr "${NEW}" types "$4" "$5"
FunctionEnd

; ---- the page of load points ----

Function ShowLoadPoints
  ${If} $IsForUser == 1
    Abort
  ${EndIf}
  !insertmacro MUI_HEADER_TEXT "$(LoadPointsTitle)" "$(LoadPointsSubtitle)"
  nsDialogs::Create 1018
  Pop $0
  ${NSD_CreateLabel} 0 0 100% 24u "$(LoadPointsText)"
  Pop $0
  ${NSD_CreateListBox} 0 28u 100% 84u ""
  Pop $List
  ${NSD_CreateButton} 0 118u 60u 15u "$(AddButton)"
  Pop $0
  ${NSD_OnClick} $0 AddChosen
  ${NSD_CreateButton} 66u 118u 60u 15u "$(RemoveButton)"
  Pop $0
  ${NSD_OnClick} $0 RemoveChosen
  Call FillList
  nsDialogs::Show
FunctionEnd

Function FillList
  SendMessage $List ${LB_RESETCONTENT} 0 0
  ${Each} "${NEW}" loadpoints
    ReadINIStr $2 "${NEW}" types "$R2"
    ${NSD_LB_AddString} $List "$R2  ($2)"
  ${EndEach}
FunctionEnd

Function AddChosen
  Pop $0
  nsDialogs::SelectFolderDialog "$(ChooseLoadPoint)" "$PROGRAMFILES32"
  Pop $0
  ${If} $0 == error
    Return
  ${EndIf}
  Call AddLoadPoint
  ${If} $Problem != ""
    MessageBox MB_OK|MB_ICONEXCLAMATION "$Problem"
  ${EndIf}
  Call FillList
FunctionEnd

; The list is written anew without the selected one.
Function RemoveChosen
  Pop $0
  SendMessage $List ${LB_GETCURSEL} 0 0 $3
  IntOp $3 $3 + 1
  ${If} $3 < 1
    Return
  ${EndIf}
  StrCpy $4 0
  ${Each} "${NEW}" loadpoints
    ${If} $R1 = $3
      DeleteINIStr "${NEW}" types "$R2"
    ${Else}
      IntOp $4 $4 + 1
      WriteINIStr "${NEW}" loadpoints $4 "$R2"
    ${EndIf}
  ${EndEach}
  WriteINIStr "${NEW}" loadpoints count $4
  Call FillList
FunctionEnd

Function LeaveLoadPoints
  Call CheckChoice
  ${If} $Problem != ""
    MessageBox MB_OK|MB_ICONEXCLAMATION "$Problem"
    Abort
  ${EndIf}
FunctionEnd

; Each load point needs the plug-in of its machine type.
Function CheckChoice
  StrCpy $Problem ""
  ${IfNot} ${SectionIsSelected} ${plugin32}
  ${AndIfNot} ${SectionIsSelected} ${plugin64}
    StrCpy $Problem "$(NoPlugin)"
  ${EndIf}
  ${Each} "${NEW}" loadpoints
    ReadINIStr $2 "${NEW}" types "$R2"
    ${If} $2 == "i486_nt"
    ${AndIfNot} ${SectionIsSelected} ${plugin32}
      StrCpy $Problem "$(NeedsPlugin32) $R2"
    ${ElseIf} $2 == "x86e_win64"
    ${AndIfNot} ${SectionIsSelected} ${plugin64}
      StrCpy $Problem "$(NeedsPlugin64) $R2"
    ${EndIf}
  ${EndEach}
FunctionEnd

; ---- the last page ----

Function ShowFinish
  ${If} $IsForUser == 1
    SendMessage $mui.FinishPage.Text ${WM_SETTEXT} 0 "STR:$(FinishText)$\r$\n$\r$\n$(FinishForUser)"
  ${EndIf}
  ${IfNot} ${SectionIsSelected} ${tools}
    ${NSD_Uncheck} $mui.FinishPage.Run
    ShowWindow $mui.FinishPage.Run ${SW_HIDE}
  ${EndIf}
FunctionEnd

; The doctor of the bit width that the first load point has; its window stays open.
Function CheckSeat
  StrCpy $0 "$INSTDIR\tools\orbikon_doctor.exe"
  SetOutPath "$PROFILE"  ; its folder shall be removable while the window is open
  ReadINIStr $1 "${OLD}" loadpoints 1
  ReadINIStr $2 "${OLD}" types "$1"
  ${If} $2 == "x86e_win64"
    StrCpy $0 "$INSTDIR\tools\orbikon_doctor_64.exe"
  ${EndIf}
  ${If} $1 == ""
    Exec '"$SYSDIR\cmd.exe" /k ""$0""'
  ${Else}
    Exec '"$SYSDIR\cmd.exe" /k ""$0" --load-point "$1""'
  ${EndIf}
FunctionEnd

; ---- removing ----

Function un.onInit
  InitPluginsDir
  File "/oname=${DOCTOR_NOW}" "${DOCTOR}"
  ${IfNot} ${FileExists} "${OLD}"
    ${Fail} ${EXIT_FAILED} "$(NoManifest) ${OLD}"
  ${EndIf}
  ${If} $EXEPATH == "$INSTDIR\uninstall.exe"  ; with _?=: no program can delete itself
    ${Fail} ${EXIT_FAILED} "$(CopyFirst)"
  ${EndIf}
  Call un.ReadArguments
  ${If} $Problem != ""
    ${Fail} ${EXIT_FAILED} "$Problem"
  ${EndIf}
  ReadINIStr $IsForUser "${OLD}" installation foruser
  ${If} $IsForUser == 1
    SetShellVarContext current
    Return
  ${EndIf}
  SetShellVarContext all
  StrCpy $1 "$INSTDIR\uninstall.exe"
  Call un.AskForRights
  ${If} $0 == started
    SetErrorLevel 0
    Quit
  ${ElseIf} $0 == no
    ${Fail} ${EXIT_FAILED} "$(NeedsRights)"
  ${EndIf}
FunctionEnd

Function un.ShowSettings
  !insertmacro MUI_HEADER_TEXT "$(SettingsTitle)" "$(SettingsSubtitle)"
  nsDialogs::Create 1018
  Pop $0
  ${NSD_CreateLabel} 0 0 100% 36u "$(SettingsText) %USERPROFILE%\OrbikonController"
  Pop $0
  ${NSD_CreateCheckBox} 0 42u 100% 12u "$(SettingsRemove)"
  Pop $SettingsBox
  ${If} $SettingsRemoved == 1
    ${NSD_Check} $SettingsBox
  ${EndIf}
  nsDialogs::Show
FunctionEnd

Function un.LeaveSettings
  ${NSD_GetState} $SettingsBox $SettingsRemoved
FunctionEnd

Function un.RemoveSettings
  ReadEnvStr $0 USERPROFILE  ; as the plug-in does
  StrCpy $0 "$0\OrbikonController"
  Delete "$0\Applications\Creo_plugin.ini"
  Delete "$0\Applications\Creo.mnu"
  Delete "$0\Creo_plugin_log.txt"
  Delete "$0\Creo_plugin_log.bak"
  RMDir "$0\Applications"
  RMDir "$0"
FunctionEnd

; The uninstaller that was started may take a moment to end after it has handed over to its copy.
Function un.DeleteOwnProgram
  ${For} $0 1 50
    Delete "$INSTDIR\uninstall.exe"
    ${IfNot} ${FileExists} "$INSTDIR\uninstall.exe"
      ${ExitFor}
    ${EndIf}
    Sleep 100
  ${Next}
FunctionEnd

Section Uninstall
  Call un.CheckAll
  Call un.Unregister
  ${Each} "${OLD}" files
    Delete "$INSTDIR\$R2"
    StrCpy $0 "$R2"
    Call un.RemoveEmptyFolders
  ${EndEach}
  Call un.DeleteOwnProgram
  ${If} $SettingsRemoved == 1
    Call un.RemoveSettings
  ${EndIf}
  DeleteRegKey SHCTX "${UNINSTALL_KEY}"
  ; What others have put into the folder stays, and the folder with it.
  Delete "${OLD}"
  SetOutPath "$TEMP"
  RMDir "$INSTDIR"
  ${GetParent} "$INSTDIR" $0
  ${GetFileName} "$0" $1
  ${If} $1 == "OrbikonController"
    RMDir "$0"
  ${EndIf}
  ${Log} "$(Removed)"
  SetErrorLevel 0
SectionEnd
