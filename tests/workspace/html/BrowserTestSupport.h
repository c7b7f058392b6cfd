#pragma once
// What the browser tests share: waiting while events run, and a script's value in a view's page.

#include "frame/TestApplication.h"

#include <KORVAutlwin/workspace/HtmlBrowserView.h>
#include <KORVAutlwin/workspace/IHTMLDocumentUtilities.h>

namespace korva::test {

inline bool Until(const std::function<bool()>& done, int ms = 20000)
{
    QElapsedTimer timer;
    timer.start();
    while (!done() && timer.elapsed() < ms)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    return done();
}

inline QString Eval(HtmlBrowserView& view, const QString& script)
{
    return IHTMLDocument2(view.GetPage()).Evaluate(script).toString();
}

} // namespace korva::test
