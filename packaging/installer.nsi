; The installer: for the user who runs it, without administrator rights. scripts/package gives the defines:
; VERSION, FINISH (picture of the last page), FILES (folder with what is installed), INSTALL_LIST and FILE_LIST (commands that
; install and delete it), OUT (the installer), SIZE_KB (of the files).
; Silent: /S, with the folder last as /D=FOLDER. It ends with 0, or with 2 when it could not be done.
Unicode true
SetCompressor /SOLID lzma
ManifestDPIAware true
!include MUI2.nsh
!include LogicLib.nsh
!include nsDialogs.nsh
!include FileFunc.nsh
!include x64.nsh
!include WinVer.nsh

!define NAME "KVX-Editor"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\${NAME}"

Name "${NAME} ${VERSION}"
OutFile "${OUT}"
InstallDir "$LOCALAPPDATA\Programs\${NAME}"
InstallDirRegKey HKCU "${UNINSTALL_KEY}" "InstallLocation"
RequestExecutionLevel user
AllowSkipFiles off
BrandingText "${NAME} ${VERSION}"
VIProductVersion "${VERSION}.0"
VIAddVersionKey "ProductName" "${NAME}"
VIAddVersionKey "FileDescription" "${NAME} installer"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "LegalCopyright" "KVX-Editor contributors, MIT License"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_WELCOMEFINISHPAGE_BITMAP "${FINISH}"
!define MUI_ABORTWARNING
!insertmacro MUI_PAGE_LICENSE "${FILES}\LICENSE.txt"
!insertmacro MUI_PAGE_COMPONENTS
!define MUI_PAGE_CUSTOMFUNCTION_LEAVE FolderPageLeave
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
Var InstalledTime

; Ends with 2 when the user gives up, and at once when nobody can be asked.
!macro GiveUp
    SetErrorLevel 2
    Quit
!macroend

; A program that runs cannot be written. Asks until it has ended.
!macro AwaitEditorClosed
    ${Do}
        ${IfNot} ${FileExists} "$INSTDIR\KVX-Editor.exe"
            ${ExitDo}
        ${EndIf}
        ClearErrors
        FileOpen $0 "$INSTDIR\KVX-Editor.exe" a
        ${IfNot} ${Errors}
            FileClose $0
            ${ExitDo}
        ${EndIf}
        MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION \
            "${NAME} is running, or its files may not be written.$\n$\nClose it, then choose Retry." /SD IDCANCEL IDRETRY +3
        !insertmacro GiveUp
    ${Loop}
!macroend

; "1" on the stack when files can be made in the folder, else "0".
Function CanWrite
    ClearErrors
    CreateDirectory "$INSTDIR"
    ${IfNot} ${Errors}
        FileOpen $0 "$INSTDIR\setup-was-here.tmp" w
    ${EndIf}
    ${If} ${Errors}
        Push 0
    ${Else}
        FileClose $0
        Delete "$INSTDIR\setup-was-here.tmp"
        Push 1
    ${EndIf}
FunctionEnd

; Before anything of an older version is taken away. A disk that does not tell its room is tried.
Function AwaitRoom
    ${GetRoot} "$INSTDIR" $0
    ClearErrors
    ${DriveSpace} "$0\" "/D=F /S=K" $1
    ${IfNot} ${Errors}
    ${AndIf} $1 < ${SIZE_KB}
        MessageBox MB_OK|MB_ICONSTOP "There is not enough room on the disk of this folder:$\n$\n$INSTDIR" /SD IDOK
        !insertmacro GiveUp
    ${EndIf}
FunctionEnd

Function .onInit
    ${IfNot} ${RunningX64}
    ${OrIfNot} ${AtLeastWin10}
        MessageBox MB_OK|MB_ICONSTOP "${NAME} needs Windows 10 or 11, 64-bit." /SD IDOK
        !insertmacro GiveUp
    ${EndIf}
FunctionEnd

Function FolderPageLeave
    Call CanWrite
    Pop $0
    ${If} $0 == 0
        MessageBox MB_OK|MB_ICONEXCLAMATION "Nothing can be written into this folder:$\n$\n$INSTDIR$\n$\nChoose another one."
        Abort
    ${EndIf}
    RMDir "$INSTDIR"  ; if it was made for the question
FunctionEnd

Section "KVX-Editor" SectionProgram
    SectionIn RO
    Call CanWrite
    Pop $0
    ${If} $0 == 0
        MessageBox MB_OK|MB_ICONSTOP "Nothing can be written into this folder:$\n$\n$INSTDIR" /SD IDOK
        !insertmacro GiveUp
    ${EndIf}
    !insertmacro AwaitEditorClosed
    Call AwaitRoom
    ; An older version takes away what it has installed, because this one may have other files.
    ${If} ${FileExists} "$INSTDIR\Uninstall.exe"
        ExecWait '"$INSTDIR\Uninstall.exe" /S _?=$INSTDIR'
    ${EndIf}
    ClearErrors
    ; Samples that are there now the user has changed: they stay.
    !include "${INSTALL_LIST}"
    SetOverwrite on
    SetOutPath "$INSTDIR"
    WriteUninstaller "$INSTDIR\Uninstall.exe"
    ${If} ${Errors}
        MessageBox MB_OK|MB_ICONSTOP "Not all files could be written. Is the disk full?" /SD IDOK
        !insertmacro GiveUp
    ${EndIf}
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

Section '"Open with" for sources' SectionTypes
    ExecWait '"$INSTDIR\KVX-Editor.exe" --register'
SectionEnd

!insertmacro MUI_FUNCTION_DESCRIPTION_BEGIN
    !insertmacro MUI_DESCRIPTION_TEXT ${SectionProgram} "The editor, its libraries, samples and documentation."
    !insertmacro MUI_DESCRIPTION_TEXT ${SectionMenu} "An entry in the Start menu."
    !insertmacro MUI_DESCRIPTION_TEXT ${SectionTypes} "The editor is offered for BASIC, C and assembly sources. What opens them on a double click stays as it is."
!insertmacro MUI_FUNCTION_DESCRIPTION_END

Function un.SettingsPage
    !insertmacro MUI_HEADER_TEXT "Settings" "Choose what becomes of what you have set up."
    nsDialogs::Create 1018
    Pop $0
    ${NSD_CreateLabel} 0 0 100% 36u "Settings, sessions, recovered texts and the history of the terminal line stay, so that a later installation finds them. Samples that you have changed, and what you have built, stay in any case."
    Pop $0
    ${NSD_CreateCheckbox} 0 44u 100% 12u "&Delete settings, sessions and recovered texts, too"
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

; All files are installed with the same time.
!macro DeleteUnchanged file
    GetFileTime "${file}" $0 $1
    ${If} "$0 $1" == $InstalledTime
        Delete "${file}"
    ${EndIf}
!macroend

Section "Uninstall"
    !insertmacro AwaitEditorClosed
    ${If} ${FileExists} "$INSTDIR\KVX-Editor.exe"
        ExecWait '"$INSTDIR\KVX-Editor.exe" --unregister'
    ${EndIf}
    GetFileTime "$INSTDIR\LICENSE.txt" $0 $1
    StrCpy $InstalledTime "$0 $1"
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
