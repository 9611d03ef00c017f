; For whom, where and what: by the command line, else as the version before, else as suits this Windows. Before the pages.

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
