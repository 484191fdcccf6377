@echo off
rem Runs a command with the development kit's software token and host library in place of the vendor's
rem and the host framework's: tembra-devkit COMMAND [ARG...]
if "%~1"=="" (
    echo usage: tembra-devkit COMMAND [ARG...], as in: tembra-devkit tembrakey list 1>&2
    exit /b 2
)
setlocal
set "TEMBRA_DEVKIT=%~dp0."
set "PATH=%~dp0;%PATH%"
%*
