#pragma once
/// \class ChmSchemeHandler
/// Serves "its:<help file>::<topic>" to the browser: the topic's bytes read out
/// of the compiled help file with chmlib, typed by the topic's extension. One
/// handler per browser profile, installed by Install, so that a help file can be
/// opened again and again.

#include <QWebEngineUrlSchemeHandler>

class QWebEngineProfile;

class ChmSchemeHandler : public QWebEngineUrlSchemeHandler
{
    Q_OBJECT
public:
    using QWebEngineUrlSchemeHandler::QWebEngineUrlSchemeHandler;
    /// Installs the handler on `profile` unless it has one already.
    static void Install(QWebEngineProfile* profile);
    void requestStarted(QWebEngineUrlRequestJob* job) override;
};
