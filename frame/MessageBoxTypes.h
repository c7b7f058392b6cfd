#pragma once
// The message box flags and answers of the framework, with their numbers.

enum : unsigned int
{
    MB_OK = 0x0,
    MB_OKCANCEL = 0x1,
    MB_ABORTRETRYIGNORE = 0x2,
    MB_YESNOCANCEL = 0x3,
    MB_YESNO = 0x4,
    MB_RETRYCANCEL = 0x5,
    MB_CANCELTRYCONTINUE = 0x6,
    MB_TYPEMASK = 0xF,

    MB_ICONHAND = 0x10,
    MB_ICONERROR = 0x10,
    MB_ICONSTOP = 0x10,
    MB_ICONQUESTION = 0x20,
    MB_ICONEXCLAMATION = 0x30,
    MB_ICONWARNING = 0x30,
    MB_ICONASTERISK = 0x40,
    MB_ICONINFORMATION = 0x40,
    MB_ICONMASK = 0xF0,

    MB_DEFBUTTON1 = 0x0,
    MB_DEFBUTTON2 = 0x100,
    MB_DEFBUTTON3 = 0x200,
    MB_DEFBUTTON4 = 0x300,
    MB_DEFMASK = 0xF00,
};

enum : int
{
    IDOK = 1,
    IDCANCEL = 2,
    IDABORT = 3,
    IDRETRY = 4,
    IDIGNORE = 5,
    IDYES = 6,
    IDNO = 7,
    IDCLOSE = 8,
    IDHELP = 9,
    IDTRYAGAIN = 10,
    IDCONTINUE = 11,
};
