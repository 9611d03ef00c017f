; What installer and uninstaller both do: NSIS wants each function twice, the uninstaller's with "un." before its name.

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
