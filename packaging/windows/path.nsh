; The programs' folder in the computer's PATH. It is changed through Windows' own calls, in memory of its own length:
; a text of NSIS holds 1023 characters, and would cut a longer PATH.

!define ENVIRONMENT "SYSTEM\CurrentControlSet\Control\Session Manager\Environment"

; Opens the key, $1, and reads PATH into memory, $4, with room for 2 KB more; its type is $2. $0 is 0 on success.
!macro ReadPath
    StrCpy $4 0
    System::Call 'advapi32::RegOpenKeyExW(p 0x80000002, w "${ENVIRONMENT}", i 0, i 0x2001F, *p .r1) i .r0'
    ${If} $0 = 0
        System::Call 'advapi32::RegQueryValueExW(p r1, w "Path", p 0, *i .r2, p 0, *i .r3) i .r0'
    ${EndIf}
    ${If} $0 = 0
        IntOp $5 $3 + 2048
        System::Call 'kernel32::GlobalAlloc(i 0x40, p r5) p .r4'
        System::Call 'advapi32::RegQueryValueExW(p r1, w "Path", p 0, *i .r2, p r4, *i r3) i .r0'
    ${EndIf}
!macroend

!macro WritePath
    System::Call 'kernel32::lstrlenW(p r4) i .r6'
    IntOp $6 $6 + 1
    IntOp $6 $6 * 2
    System::Call 'advapi32::RegSetValueExW(p r1, w "Path", i 0, i r2, p r4, i r6) i .r0'
    SendMessage ${HWND_BROADCAST} ${WM_WININICHANGE} 0 "STR:Environment" /TIMEOUT=5000
!macroend

!macro ForgetPath
    System::Call 'kernel32::GlobalFree(p r4)'
    System::Call 'advapi32::RegCloseKey(p r1)'
!macroend

!macro AddToPath folder
    !insertmacro ReadPath
    ${If} $0 = 0
        System::Call 'shlwapi::StrStrIW(p r4, w ";${folder}") p .r5'
        ${If} $5 = 0
            System::Call 'kernel32::lstrcatW(p r4, w ";${folder}")'
            !insertmacro WritePath
        ${EndIf}
    ${Else}
        DetailPrint "PATH cannot be read; add ${folder} to it by hand."
    ${EndIf}
    !insertmacro ForgetPath
!macroend

!macro RemoveFromPath folder
    !insertmacro ReadPath
    ${If} $0 = 0
        System::Call 'shlwapi::StrStrIW(p r4, w ";${folder}") p .r5'
        ${If} $5 <> 0
            StrLen $7 ";${folder}"
            IntOp $7 $7 * 2
            IntPtrOp $7 $5 + $7
            ; What follows has to be the next folder or the end, or this is another folder with the same beginning.
            System::Call '*$7(&i2 .r8)'
            ${If} $8 = 0
            ${OrIf} $8 = 59
                System::Call 'kernel32::lstrlenW(p r7) i .r6'
                IntOp $6 $6 + 1
                IntOp $6 $6 * 2
                System::Call 'ntdll::RtlMoveMemory(p r5, p r7, p r6)'
                !insertmacro WritePath
            ${EndIf}
        ${EndIf}
    ${EndIf}
    !insertmacro ForgetPath
!macroend
