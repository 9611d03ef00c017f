; The files of the package: first to a folder of their own, then to their places, in a step that can be taken back; and the
; manifest that says what is installed.

Function NoteFile
  Pop $6
  ${Append} "${NEW}" files "$6"
  WriteINIStr "${NEW}" isnew "$6" 1
FunctionEnd

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

!macro AddName NAME
  ${If} ${SectionIsSelected} ${${NAME}}
    StrCpy $0 "$0,${NAME}"
  ${EndIf}
!macroend

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
