; The installer: for one user, without administrator's rights, since projects and reports lie below the program's
; folder. Silent with /S; another folder with /D=C:\folder as the last argument. Exit status 2: Quenlar is running, or a
; file to be replaced is in use.
;
; Given on the command line: NAME, VERSION, RELEASE (its first two numbers), SOURCE (folder of the files to install), OUTPUT
; (the installer to write).

Unicode true
Target amd64-unicode
ManifestDPIAware true
SetCompressor /SOLID lzma
RequestExecutionLevel user
AllowSkipFiles off  ; a silent installation would leave a file that is in use as it is and end with 0

!include MUI2.nsh

!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Quenlar"

Name "${NAME} ${RELEASE}"
OutFile "${OUTPUT}"
InstallDir "$LOCALAPPDATA\Programs\Quenlar"
InstallDirRegKey HKCU "${UNINSTALL_KEY}" "InstallLocation"
BrandingText "${NAME} ${VERSION}"

VIProductVersion "${VERSION}.0"
VIAddVersionKey "ProductName" "${NAME}"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "FileDescription" "${NAME} Setup"
VIAddVersionKey "CompanyName" "Brenvy"
VIAddVersionKey "LegalCopyright" "See LICENSE.txt"

!define MUI_ICON "${SOURCE}\quenlar.ico"
!define MUI_UNICON "${SOURCE}\quenlar.ico"
!define MUI_FINISHPAGE_RUN "$INSTDIR\Quenlar.exe"
!insertmacro MUI_PAGE_LICENSE "${SOURCE}\LICENSE.txt"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

; The program holds a named mutex for as long as it runs, also while it is only an icon in the notification area. Who may
; not open it (5, access denied) sees the program of an administrator or of another user.
!macro RefuseWhileRunning UN
Function ${UN}RefuseWhileRunning
  System::Call 'kernel32::OpenMutexW(i 0x100000, i 0, w "Local\QuenlarInstance") p .r0 ?e'
  Pop $1
  ${If} $0 P<> 0
  ${OrIf} $1 = 5
    System::Call 'kernel32::CloseHandle(p r0)'
    MessageBox MB_OK|MB_ICONEXCLAMATION "Quenlar is running. Please choose Exit in the menu of its icon first." /SD IDOK
    SetErrorLevel 2
    Quit
  ${EndIf}
FunctionEnd
!macroend
!insertmacro RefuseWhileRunning ""
!insertmacro RefuseWhileRunning "un."

Function .onInit
  Call RefuseWhileRunning
FunctionEnd

Function un.onInit
  Call un.RefuseWhileRunning
FunctionEnd

Section "Quenlar"
  SetOutPath "$INSTDIR"
  File "${SOURCE}\Quenlar.exe"
  File "${SOURCE}\quenlar-cli.exe"
  File "${SOURCE}\README.txt"
  File "${SOURCE}\LICENSE.txt"
  WriteUninstaller "$INSTDIR\Uninstall.exe"
  CreateShortcut "$SMPROGRAMS\${NAME}.lnk" "$INSTDIR\Quenlar.exe"

  WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayName" "${NAME}"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "Publisher" "Brenvy"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\Quenlar.exe"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\Uninstall.exe"'
  WriteRegStr HKCU "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\Uninstall.exe" /S'
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoModify" 1
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoRepair" 1
SectionEnd

; Projects, reports and settings are the user's and stay.
Section "Uninstall"
  Delete "$INSTDIR\Quenlar.exe"
  Delete "$INSTDIR\quenlar-cli.exe"
  Delete "$INSTDIR\README.txt"
  Delete "$INSTDIR\LICENSE.txt"
  Delete "$INSTDIR\Uninstall.exe"
  Delete "$SMPROGRAMS\${NAME}.lnk"
  RMDir "$INSTDIR\data"  ; every start makes these two; what is in them keeps them
  RMDir "$INSTDIR\report"
  RMDir "$INSTDIR"
  DeleteRegKey HKCU "${UNINSTALL_KEY}"
SectionEnd
