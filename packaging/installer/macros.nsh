; The words that installer and uninstaller are written in.

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
