; Load points: which there are, and their page.

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
