; Services that run a program that is about to be removed. The program itself removes them, one after the other: it stops
; a service in order, and takes back all that came with it. When one cannot be removed, everything stays as it is.

!define SERVICES "SYSTEM\CurrentControlSet\Services"

!macro RemoveServicesOf program
    StrLen $3 '"${program}"'
    StrCpy $0 0 ; the number of the service
    ${Do}
        EnumRegKey $1 HKLM "${SERVICES}" $0
        ${If} $1 == ""
            ${ExitDo}
        ${EndIf}
        IntOp $0 $0 + 1
        ReadRegStr $2 HKLM "${SERVICES}\$1" "ImagePath"
        StrCpy $2 $2 $3
        ${If} $2 == '"${program}"'
            DetailPrint "Removing the service $1"
            nsExec::ExecToLog '"${program}" service remove "$1"'
            Pop $2
            ${If} $2 <> 0
                DetailPrint "The service $1 could not be removed, so nothing else was."
                SetErrorLevel 2
                Abort
            ${EndIf}
            ; Those behind it have moved up, unless somebody still has it open.
            ReadRegStr $2 HKLM "${SERVICES}\$1" "ImagePath"
            ${If} $2 == ""
                IntOp $0 $0 - 1
            ${EndIf}
        ${EndIf}
    ${Loop}
!macroend
