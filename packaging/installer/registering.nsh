; Where Creo and Windows learn of the plug-in.

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
