@echo off
rem Three simulated controllers, and a host that polls them. Ctrl-C ends the host; the simulator's window is closed after it.
set "folder=%LOCALAPPDATA%\sbus-demo"
if not exist "%folder%" mkdir "%folder%"
copy /y "%~dp0*.csv" "%folder%" >nul
copy /y "%~dp0site.toml" "%folder%" >nul
start "Simulated controllers" /min "%~dp0..\bin\sbus-sim.exe" "%folder%\site.toml" --move
timeout /t 2 /nobreak >nul
"%~dp0..\bin\sbus-host.exe" run "%folder%\site.toml" %*
taskkill /fi "WINDOWTITLE eq Simulated controllers*" >nul
pause
