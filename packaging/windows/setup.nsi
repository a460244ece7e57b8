; The installer, for all users of a computer. VERSION, PACKAGE (the folder to install), REMOVALS (what removes it again)
; and OUTPUT come from the command line. To whom it runs: /S installs silently, /PATH adds the programs to PATH, and
; /D=FOLDER, as the last one, names the folder.
Unicode true
Target amd64-unicode
SetCompressor /SOLID lzma
!include MUI2.nsh
!include LogicLib.nsh
!include FileFunc.nsh
!include path.nsh
!include services.nsh

Name "SBusDriver ${VERSION}"
OutFile "${OUTPUT}"
InstallDir "$PROGRAMFILES64\SBusDriver"
InstallDirRegKey HKLM "Software\SBusDriver" "Folder"
RequestExecutionLevel admin
BrandingText " "
ShowInstDetails show
VIProductVersion "${VERSION}.0"
VIAddVersionKey ProductName "SBusDriver"
VIAddVersionKey ProductVersion "${VERSION}"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey FileDescription "Installer of SBusDriver"
VIAddVersionKey LegalCopyright "All rights are reserved by the authors; no licence is given."

!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\SBusDriver"
!define MUI_COMPONENTSPAGE_SMALLDESC
!define MUI_WELCOMEPAGE_TEXT "This installs the driver plug-in for S-Bus, the host sbus-host, the simulator sbus-sim, and \
    their documents.$\r$\n$\r$\nEnd running hosts first: Windows does not replace files that are in use."
!define MUI_FINISHPAGE_SHOWREADME "$INSTDIR\docs\windows.html"
!define MUI_FINISHPAGE_SHOWREADME_TEXT "Show how to get first values"

!insertmacro MUI_PAGE_WELCOME
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English

Section "Programs, plug-in and documents" SectionPrograms
    SectionIn RO
    SetOutPath "$INSTDIR"
    File "${PACKAGE}/*.html"
    File /r "${PACKAGE}/bin" "${PACKAGE}/docs" "${PACKAGE}/benchmarks" "${PACKAGE}/demo" "${PACKAGE}/licences"
    WriteUninstaller "$INSTDIR\uninstall.exe"
    WriteRegStr HKLM "Software\SBusDriver" "Folder" "$INSTDIR"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayName" "SBusDriver"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
    WriteRegStr HKLM "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoModify" 1
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoRepair" 1
    ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" "EstimatedSize" $0
SectionEnd

Section "Start menu" SectionStartMenu
    CreateDirectory "$SMPROGRAMS\SBusDriver"
    CreateShortcut "$SMPROGRAMS\SBusDriver\Documents.lnk" "$INSTDIR\README.html"
    CreateShortcut "$SMPROGRAMS\SBusDriver\Demo.lnk" "$INSTDIR\demo\demo.cmd"
    CreateShortcut "$SMPROGRAMS\SBusDriver\Uninstall.lnk" "$INSTDIR\uninstall.exe"
SectionEnd

; A component of its own, and not chosen at first: it changes what every program of this computer finds.
Section /o "Programs in PATH" SectionPath
    !insertmacro AddToPath "$INSTDIR\bin"
SectionEnd

Section /o "Headers and import libraries" SectionHeaders
    SetOutPath "$INSTDIR"
    File /r "${PACKAGE}/include" "${PACKAGE}/lib"
SectionEnd

!insertmacro MUI_FUNCTION_DESCRIPTION_BEGIN
!insertmacro MUI_DESCRIPTION_TEXT ${SectionPrograms} "The plug-in with the driver framework, sbus-host, sbus-sim, Qt, documents, demo."
!insertmacro MUI_DESCRIPTION_TEXT ${SectionStartMenu} "Documents and demo."
!insertmacro MUI_DESCRIPTION_TEXT ${SectionPath} "sbus-host and sbus-sim are found in every command prompt."
!insertmacro MUI_DESCRIPTION_TEXT ${SectionHeaders} "What a plug-in or a host is built with against the driver framework."
!insertmacro MUI_FUNCTION_DESCRIPTION_END

Function .onInit
    SetShellVarContext all
    ${GetParameters} $0
    ClearErrors
    ${GetOptions} $0 "/PATH" $1
    ${IfNot} ${Errors}
        SectionSetFlags ${SectionPath} 1
    ${EndIf}
FunctionEnd

Function un.onInit
    SetShellVarContext all
FunctionEnd

; Only what was installed, file by file: a folder stays when there is something of a person's own in it.
Section Uninstall
    !insertmacro RemoveServicesOf "$INSTDIR\bin\sbus-host.exe"
    !insertmacro RemoveFromPath "$INSTDIR\bin"
    !include "${REMOVALS}"
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR"
    Delete "$SMPROGRAMS\SBusDriver\Documents.lnk"
    Delete "$SMPROGRAMS\SBusDriver\Demo.lnk"
    Delete "$SMPROGRAMS\SBusDriver\Uninstall.lnk"
    RMDir "$SMPROGRAMS\SBusDriver"
    DeleteRegKey HKLM "${UNINSTALL_KEY}"
    DeleteRegKey HKLM "Software\SBusDriver"
SectionEnd
