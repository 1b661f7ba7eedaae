; The installer: for the user who runs it, without administrator rights. scripts/package gives the defines:
; VERSION, FILES (folder with what is installed), OUT (the installer), SIZE_KB (of the files).
Unicode true
SetCompressor /SOLID lzma
!include MUI2.nsh
!include LogicLib.nsh
!include nsDialogs.nsh
!include FileFunc.nsh

!define NAME "KVX-Editor"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\${NAME}"

Name "${NAME} ${VERSION}"
OutFile "${OUT}"
InstallDir "$LOCALAPPDATA\Programs\${NAME}"
InstallDirRegKey HKCU "${UNINSTALL_KEY}" "InstallLocation"
RequestExecutionLevel user
VIProductVersion "${VERSION}.0"
VIAddVersionKey "ProductName" "${NAME}"
VIAddVersionKey "FileDescription" "${NAME} installer"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "LegalCopyright" "KVX-Editor contributors, MIT License"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_ABORTWARNING
!insertmacro MUI_PAGE_LICENSE "${FILES}\LICENSE.txt"
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!define MUI_FINISHPAGE_RUN "$INSTDIR\KVX-Editor.exe"
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
UninstPage custom un.SettingsPage un.SettingsPageLeave
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

Var RemoveSettings
Var Checkbox

Section "KVX-Editor" SectionProgram
    SectionIn RO
    SetOutPath "$INSTDIR"
    File /r "${FILES}\*"
    WriteUninstaller "$INSTDIR\Uninstall.exe"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayName" "${NAME}"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\KVX-Editor.exe"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "Publisher" "KVX-Editor contributors"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\Uninstall.exe"'
    WriteRegStr HKCU "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\Uninstall.exe" /S'
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "EstimatedSize" ${SIZE_KB}
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoModify" 1
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoRepair" 1
SectionEnd

Section "Start menu" SectionMenu
    CreateShortcut "$SMPROGRAMS\${NAME}.lnk" "$INSTDIR\KVX-Editor.exe"
SectionEnd

Section '"Open with" for BASIC, C and assembly' SectionTypes
    ExecWait '"$INSTDIR\KVX-Editor.exe" --register'
SectionEnd

!insertmacro MUI_FUNCTION_DESCRIPTION_BEGIN
    !insertmacro MUI_DESCRIPTION_TEXT ${SectionProgram} "The editor, its libraries, samples and documentation."
    !insertmacro MUI_DESCRIPTION_TEXT ${SectionMenu} "An entry in the Start menu."
    !insertmacro MUI_DESCRIPTION_TEXT ${SectionTypes} "The editor is offered for source files. What opens them on a double click stays as it is."
!insertmacro MUI_FUNCTION_DESCRIPTION_END

Function un.SettingsPage
    nsDialogs::Create 1018
    Pop $0
    ${NSD_CreateLabel} 0 0 100% 36u "Settings, sessions, recovered texts and the history of the terminal line stay, so that a later installation finds them."
    Pop $0
    ${NSD_CreateCheckbox} 0 44u 100% 12u "Delete &these, too"
    Pop $Checkbox
    nsDialogs::Show
FunctionEnd

Function un.SettingsPageLeave
    ${NSD_GetState} $Checkbox $RemoveSettings
FunctionEnd

Function un.onInit
    StrCpy $RemoveSettings 0
    ${GetParameters} $0
    ClearErrors
    ${GetOptions} $0 "/REMOVESETTINGS" $1
    ${IfNot} ${Errors}
        StrCpy $RemoveSettings 1
    ${EndIf}
FunctionEnd

Section "Uninstall"
    ExecWait '"$INSTDIR\KVX-Editor.exe" --unregister'
    ; Only what was installed is deleted: the folder may hold the user's compilers and settings.
    !include "${FILE_LIST}"
    Delete "$INSTDIR\Uninstall.exe"
    Delete "$INSTDIR\Editor_Detect.log"
    Delete "$INSTDIR\Editor_Detect.old.log"
    ${If} $RemoveSettings == 1
        Delete "$INSTDIR\Editor.ini"
        Delete "$INSTDIR\Editor.ini.bak"
        Delete "$INSTDIR\Editor.ini_autosave.kvxsess"
        Delete "$INSTDIR\workspace.json"
        RMDir /r "$LOCALAPPDATA\KVX-Editor"
    ${EndIf}
    RMDir "$INSTDIR"  ; stays while anything is in it
    Delete "$SMPROGRAMS\${NAME}.lnk"
    DeleteRegKey HKCU "${UNINSTALL_KEY}"
SectionEnd
