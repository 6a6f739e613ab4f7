; The set-up program for Windows, made by `pack`, which gives
;   NAMES   the names of this build (names.nsh)
;   MADE    a folder with files.nsh and profiles.nsh, the commands that unpack; no-profiles.nsh, those that
;           delete what the second has unpacked; Installed, what the first has; and icon.ico
;   OUT     the program to make
Target amd64-unicode
SetCompressor /SOLID lzma
!include "${NAMES}"
!include LogicLib.nsh
!include MUI2.nsh
!include nsDialogs.nsh
!include FileFunc.nsh
!include WinVer.nsh

!define PROFILE_CLASS "${MAKER}.Kelvaro.Profile"
!define SETTINGS "Software\${MAKER}\Kelvaro"
!define CLASSES "Software\Classes"
!define APPS "Software\Microsoft\Windows\CurrentVersion\Uninstall\Kelvaro"
!define AUTOSTART "Software\Microsoft\Windows\CurrentVersion\Run"
; Of a set-up or a removal that was refused.
!define REFUSED 2

Name "Kelvaro ${SHOWN_VERSION}"
OutFile "${OUT}"
BrandingText "${MAKER}"
; Nobody needs more rights than for the own folder until "for all users" is chosen.
RequestExecutionLevel user
ManifestDPIAware true
ManifestSupportedOS Win10
AllowSkipFiles off
VIProductVersion "${VERSION}.0"
VIAddVersionKey ProductName "Kelvaro"
VIAddVersionKey ProductVersion "${SHOWN_VERSION}"
VIAddVersionKey FileVersion "${SHOWN_VERSION}"
VIAddVersionKey FileDescription "Kelvaro set-up"
VIAddVersionKey CompanyName "${MAKER}"
VIAddVersionKey LegalCopyright "${COPYRIGHT}"

Var Users  ; "one" or "all"
Var Chosen ; whether the command line says for whom
Var Folder ; the one that was asked for, empty for none
Var OneUserButton
Var AllUsersButton

!define MUI_ICON "${MADE}/icon.ico"
!define MUI_UNICON "${MADE}/icon.ico"
!define MUI_ABORTWARNING
!define MUI_FINISHPAGE_RUN
!define MUI_FINISHPAGE_RUN_TEXT "Start Kelvaro"
!define MUI_FINISHPAGE_RUN_FUNCTION StartKelvaro
Page custom ShowUsers LeaveUsers
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English

; Both the set-up program and the one that takes all away have these.
!macro Shared un
  ; The text on the stack: in a box, or on the output of whoever started this silently.
  Function ${un}Say
    Exch $0
    Push $1
    ${If} ${Silent}
      System::Call 'kernel32::AttachConsole(i -1)'
      System::Call 'kernel32::GetStdHandle(i -11)p.r1'
      FileWrite $1 "$0$\r$\n"
    ${Else}
      MessageBox MB_OK|MB_ICONINFORMATION "$0"
    ${EndIf}
    Pop $1
    Pop $0
  FunctionEnd

  ; Says why, and ends.
  Function ${un}Refuse
    Call ${un}Say
    SetErrorLevel ${REFUSED}
    Quit
  FunctionEnd

  Function ${un}UseUsers
    ${If} $Users == all
      SetShellVarContext all
    ${Else}
      SetShellVarContext current
    ${EndIf}
  FunctionEnd

  ; The stack's program of the folder must not run: its file couldn't be replaced.
  Function ${un}AwaitEnd
    Exch $0
    Push $1
    ${Do}
      ${IfNot} ${FileExists} "$INSTDIR\$0"
        ${Break}
      ${EndIf}
      ClearErrors
      FileOpen $1 "$INSTDIR\$0" a
      ${IfNot} ${Errors}
        FileClose $1
        ${Break}
      ${EndIf}
      ${If} ${Silent}
        Push "$0 is running in $INSTDIR. End it first."
        Call ${un}Refuse
      ${EndIf}
      MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION \
        "$0 is running in $INSTDIR.$\r$\n$\r$\nEnd it, from its icon in the notification area \
if it has no window, and press Retry." IDRETRY +3
      SetErrorLevel ${REFUSED}
      Quit
    ${Loop}
    Pop $1
    Pop $0
  FunctionEnd

  Function ${un}AwaitPrograms
    Push kelvaro.exe
    Call ${un}AwaitEnd
    Push kelvaroctl.exe
    Call ${un}AwaitEnd
    Push rendlink.exe
    Call ${un}AwaitEnd
  FunctionEnd
!macroend
!insertmacro Shared ""
!insertmacro Shared "un."

; ---- Setting up

; For whom, and so where: the folder asked for, the one where it is already, or the usual one.
Function ChooseFolder
  Call UseUsers
  StrCpy $INSTDIR $Folder
  ${If} $INSTDIR == ""
    ReadRegStr $INSTDIR SHCTX "${APPS}" InstallLocation
  ${EndIf}
  ${If} $INSTDIR == ""
    ${If} $Users == all
      StrCpy $INSTDIR "$PROGRAMFILES64\Kelvaro"
    ${Else}
      StrCpy $INSTDIR "$LOCALAPPDATA\Programs\Kelvaro"
    ${EndIf}
  ${EndIf}
FunctionEnd

Function .onInit
  ${IfNot} ${AtLeastWin10}
    Push "Kelvaro needs Windows 10 or later."
    Call Refuse
  ${EndIf}
  StrCpy $Folder $INSTDIR ; of /D=
  StrCpy $Users one
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/AllUsers" $1
  ${IfNot} ${Errors}
    StrCpy $Users all
    StrCpy $Chosen 1
    UserInfo::GetAccountType
    Pop $1
    ${If} $1 != Admin
      Push "To set up Kelvaro for all users, run this as an administrator."
      Call Refuse
    ${EndIf}
  ${EndIf}
  Call ChooseFolder
FunctionEnd

Function ShowUsers
  ${If} $Chosen == 1
    Abort
  ${EndIf}
  !insertmacro MUI_HEADER_TEXT "For whom?" "Kelvaro can be set up for you alone or for all users."
  nsDialogs::Create 1018
  Pop $0
  ${NSD_CreateFirstRadioButton} 0 0 100% 12u "&Only for me"
  Pop $OneUserButton
  ${NSD_CreateLabel} 12u 14u 90% 24u "Needs no administrator. Your profiles lie beside the program."
  Pop $0
  ${NSD_CreateAdditionalRadioButton} 0 44u 100% 12u "For &all users of this computer"
  Pop $AllUsersButton
  ${NSD_CreateLabel} 12u 58u 90% 24u "Needs an administrator. Each user has profiles of their own."
  Pop $0
  ${If} $Users == all
    StrCpy $0 $AllUsersButton
  ${Else}
    StrCpy $0 $OneUserButton
  ${EndIf}
  ${NSD_Check} $0
  ${NSD_SetFocus} $0
  nsDialogs::Show
FunctionEnd

Function LeaveUsers
  StrCpy $Users one
  ${NSD_GetState} $AllUsersButton $0
  ${If} $0 == ${BST_CHECKED}
    UserInfo::GetAccountType
    Pop $1
    ${If} $1 != Admin
      ClearErrors
      ExecShell runas "$EXEPATH" /AllUsers
      ${If} ${Errors}
        Abort ; nobody allowed it
      ${EndIf}
      Quit
    ${EndIf}
    StrCpy $Users all
  ${EndIf}
  Call ChooseFolder
FunctionEnd

; By the shell: not with the rights of an administrator who has set it up.
Function StartKelvaro
  Exec '"$WINDIR\explorer.exe" "$INSTDIR\kelvaro.exe"'
FunctionEnd

; Takes away what an older version had and this one hasn't, by their two lists.
Function RemoveOld
  FileOpen $0 "$PLUGINSDIR\Before" r
  ${Do}
    ClearErrors
    FileRead $0 $1
    ${If} ${Errors}
      ${Break}
    ${EndIf}
    StrCpy $4 0
    FileOpen $2 "$INSTDIR\Installed" r
    ${Do}
      ClearErrors
      FileRead $2 $3
      ${If} ${Errors}
        ${Break}
      ${EndIf}
      ${If} $3 == $1
        StrCpy $4 1
      ${EndIf}
    ${Loop}
    FileClose $2
    ${If} $4 == 0
      StrCpy $1 $1 -2 ; without the end of its line
      Delete "$INSTDIR\$1"
    ${EndIf}
  ${Loop}
  FileClose $0
FunctionEnd

Section
  ClearErrors
  CreateDirectory "$INSTDIR"
  FileOpen $0 "$INSTDIR\Installed.new" w
  ${If} ${Errors}
    Push "Nothing can be written in $INSTDIR."
    Call Refuse
  ${EndIf}
  FileClose $0
  Delete "$INSTDIR\Installed.new"
  Call AwaitPrograms

  InitPluginsDir
  CopyFiles /SILENT "$INSTDIR\Installed" "$PLUGINSDIR\Before"
  !include "${MADE}/files.nsh"
  Call RemoveOld
  WriteUninstaller "$INSTDIR\uninstall.exe"
  ${If} $Users == all
    FileOpen $0 "$INSTDIR\PerUser" w
    FileClose $0
  ${Else}
    Delete "$INSTDIR\PerUser"
  ${EndIf}
  ; Made once, all of them or none; from then on they are the player's.
  ${IfNot} ${FileExists} "$INSTDIR\Profiles\*.*"
    !include "${MADE}/profiles.nsh"
    SetOutPath "$INSTDIR"
    Rename "$INSTDIR\Profiles.new" "$INSTDIR\Profiles"
  ${EndIf}

  SetOutPath "$INSTDIR"
  CreateDirectory "$SMPROGRAMS\Kelvaro"
  CreateShortcut "$SMPROGRAMS\Kelvaro\Kelvaro.lnk" "$INSTDIR\kelvaro.exe"
  CreateShortcut "$SMPROGRAMS\Kelvaro\Rendlink.lnk" "$INSTDIR\rendlink.exe"
  CreateShortcut "$SMPROGRAMS\Kelvaro\Kelvaro Help.lnk" "$INSTDIR\Help\Kelvaro.chm"

  WriteRegStr SHCTX "${CLASSES}\.idprof" "" "${PROFILE_CLASS}"
  WriteRegStr SHCTX "${CLASSES}\${PROFILE_CLASS}" "" "Kelvaro profile"
  WriteRegStr SHCTX "${CLASSES}\${PROFILE_CLASS}\DefaultIcon" "" '"$INSTDIR\kelvaro.exe",-129'
  ${RefreshShellIcons}

  WriteRegStr SHCTX "${APPS}" DisplayName "Kelvaro"
  WriteRegStr SHCTX "${APPS}" DisplayVersion "${SHOWN_VERSION}"
  WriteRegStr SHCTX "${APPS}" DisplayIcon "$INSTDIR\kelvaro.exe"
  WriteRegStr SHCTX "${APPS}" Publisher "${MAKER}"
  !if "${WEB_ADDRESS}" != ""
    WriteRegStr SHCTX "${APPS}" URLInfoAbout "${WEB_ADDRESS}"
  !endif
  !if "${SUPPORT_ADDRESS}" != ""
    WriteRegStr SHCTX "${APPS}" Contact "${SUPPORT_ADDRESS}"
  !endif
  WriteRegStr SHCTX "${APPS}" InstallLocation "$INSTDIR"
  WriteRegStr SHCTX "${APPS}" UninstallString '"$INSTDIR\uninstall.exe"'
  WriteRegStr SHCTX "${APPS}" QuietUninstallString '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD SHCTX "${APPS}" NoModify 1
  WriteRegDWORD SHCTX "${APPS}" NoRepair 1
  SectionGetSize 0 $0
  WriteRegDWORD SHCTX "${APPS}" EstimatedSize $0
SectionEnd

; ---- Taking away

Function un.onInit
  StrCpy $Users one
  ${If} ${FileExists} "$INSTDIR\PerUser"
    StrCpy $Users all
    UserInfo::GetAccountType
    Pop $0
    ${If} $0 != Admin
      ${IfNot} ${Silent}
        ExecShell runas "$INSTDIR\uninstall.exe"
        Quit
      ${EndIf}
      Push "Kelvaro is there for all users. To take it away, run this as an administrator."
      Call un.Refuse
    ${EndIf}
  ${EndIf}
  Call un.UseUsers
FunctionEnd

; What only this user has. With a set-up for all users nobody knows who has any.
Function un.ForgetUser
  DeleteRegKey HKCU "${SETTINGS}"
  DeleteRegKey /ifempty HKCU "Software\${MAKER}"
  ; It would start a program that isn't there.
  ReadRegStr $0 HKCU "${AUTOSTART}" Kelvaro
  StrLen $1 "$INSTDIR\"
  StrCpy $2 $0 1
  ${If} $2 == '"'
    StrCpy $0 $0 "" 1
  ${EndIf}
  StrCpy $0 $0 $1
  ${If} $0 == "$INSTDIR\"
    DeleteRegValue HKCU "${AUTOSTART}" Kelvaro
  ${EndIf}
FunctionEnd

Section Uninstall
  ${IfNot} ${FileExists} "$INSTDIR\Installed"
    Push "There is no list of what was installed, $INSTDIR\Installed."
    Call un.Refuse
  ${EndIf}
  Call un.AwaitPrograms

  FileOpen $0 "$INSTDIR\Installed" r
  ${Do}
    ClearErrors
    FileRead $0 $1
    ${If} ${Errors}
      ${Break}
    ${EndIf}
    StrCpy $1 $1 -2 ; without the end of its line
    Delete "$INSTDIR\$1"
  ${Loop}
  FileClose $0
  Delete "$INSTDIR\Installed"
  Delete "$INSTDIR\PerUser"
  Delete "$INSTDIR\uninstall.exe"
  RMDir "$INSTDIR\Help"
  ; Those that a user plays with lie elsewhere then.
  ${If} $Users == all
    !include "${MADE}/no-profiles.nsh"
  ${EndIf}
  RMDir "$INSTDIR\Profiles"
  RMDir "$INSTDIR"

  Delete "$SMPROGRAMS\Kelvaro\Kelvaro.lnk"
  Delete "$SMPROGRAMS\Kelvaro\Rendlink.lnk"
  Delete "$SMPROGRAMS\Kelvaro\Kelvaro Help.lnk"
  RMDir "$SMPROGRAMS\Kelvaro"

  DeleteRegKey SHCTX "${APPS}"
  DeleteRegKey SHCTX "${CLASSES}\${PROFILE_CLASS}"
  ReadRegStr $0 SHCTX "${CLASSES}\.idprof" ""
  ${If} $0 == "${PROFILE_CLASS}"
    DeleteRegValue SHCTX "${CLASSES}\.idprof" ""
    DeleteRegKey /ifempty SHCTX "${CLASSES}\.idprof"
  ${EndIf}
  ${RefreshShellIcons}
  ${If} $Users == one
    Call un.ForgetUser
  ${EndIf}
  ; The program makes them when an administrator runs it.
  DeleteRegKey /ifempty HKLM "${SETTINGS}"
  DeleteRegKey /ifempty HKLM "Software\${MAKER}"

  ${If} ${FileExists} "$INSTDIR\Profiles\*.*"
    Push "Your profiles stay: $INSTDIR\Profiles"
    Call un.Say
  ${ElseIf} $Users == all
    Push "What users have stays: their profiles, in %APPDATA%\kelvaro, and settings."
    Call un.Say
  ${EndIf}
SectionEnd
