' Talks to Outlook through smallest_engine.exe, which must be running.
'
'   cscript watch.vbs WORD...    on, off: automatic update; click: a button; exit: restart the links;
'                                quit: end the engine; a number: print what arrives for that many seconds
'
' A script alone cannot be an engine: it cannot enter the running object table, and adapters call early-bound.
Option Explicit
Dim engine, i
Set engine = CreateObject("SmallestEngine.Application")
For i = 0 To WScript.Arguments.Count - 1
    Select Case LCase(WScript.Arguments(i))
        Case "on": Tell "PutControl", "<SET_AUTOUPDATE value=""true""/>"
        Case "off": Tell "PutControl", "<SET_AUTOUPDATE value=""false""/>"
        Case "exit": Tell "PutControl", "<EXIT now=""1""/>"
        Case "click": Tell "PutMessage", "<BUTTON_CLICK id=""0""/>"
        Case "quit": engine.Quit
        Case Else: Watch CDbl(WScript.Arguments(i))
    End Select
Next

Sub Tell(member, text)
    Dim windows
    If member = "PutControl" Then windows = engine.PutControl(text) Else windows = engine.PutMessage(text)
    WScript.Echo text & " to " & windows & " windows"
End Sub

Sub Watch(seconds)
    Dim finish, line
    finish = DateAdd("s", seconds, Now)
    Do
        line = engine.TakeLine() ' waits a tenth of a second
        If line <> "" Then WScript.Echo line
    Loop While line <> "" Or Now < finish
End Sub
