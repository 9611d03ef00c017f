; The last page.

Function ShowFinish
  ${If} $IsForUser == 1
    SendMessage $mui.FinishPage.Text ${WM_SETTEXT} 0 "STR:$(Installed)$\r$\n$INSTDIR$\r$\n$\r$\n$(FinishForUser)"
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
