; Removing.

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
