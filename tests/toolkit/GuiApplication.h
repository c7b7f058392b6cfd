#pragma once
// One QGuiApplication for the whole window-free test program, offscreen.

#include <QGuiApplication>

#include <cstdlib>

namespace korva::test {

inline QGuiApplication* Application()
{
    if (auto* existing = qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return existing;
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    static int argc = 1;
    static char name[] = "toolkit_tests";
    static char* argv[] = {name, nullptr};
    return new QGuiApplication(argc, argv);
}

} // namespace korva::test
