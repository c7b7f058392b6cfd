#include <KORVAutlwin/help/ChmSchemeHandler.h>

#include <KORVAutlwin/help/ChmStorage.h>
#include <KORVAutlwin/help/HelpLinks.h>

#include <QBuffer>
#include <QWebEngineProfile>
#include <QWebEngineUrlRequestJob>
#include <QWebEngineUrlScheme>

namespace {
// The browser takes schemes only before it starts: at the library's load.
struct ItsSchemeSetUp
{
    ItsSchemeSetUp()
    {
        QWebEngineUrlScheme its("its");
        its.setSyntax(QWebEngineUrlScheme::Syntax::Path);
        // The pages of a help file link each other and their pictures.
        its.setFlags(QWebEngineUrlScheme::LocalAccessAllowed);
        QWebEngineUrlScheme::registerScheme(its);
    }
} const gItsSchemeSetUp;
} // namespace

void ChmSchemeHandler::Install(QWebEngineProfile* profile)
{
    if (!profile->urlSchemeHandler("its"))
        profile->installUrlSchemeHandler("its", new ChmSchemeHandler(profile));
}

void ChmSchemeHandler::requestStarted(QWebEngineUrlRequestJob* job)
{
    std::string file, topic, bytes;
    const std::string url = "its:" + job->requestUrl().path(QUrl::FullyDecoded).toStdString();
    if (!HelpLinks::SplitTopicUrl(url, file, topic)) {
        job->fail(QWebEngineUrlRequestJob::UrlInvalid);
        return;
    }
    const ChmStorage storage(file);
    if (!storage.IsOpen() || !storage.ReadStream(topic, bytes)) {
        job->fail(QWebEngineUrlRequestJob::UrlNotFound);
        return;
    }
    auto* buffer = new QBuffer(job);
    buffer->setData(QByteArray::fromStdString(bytes));
    job->reply(QByteArray::fromStdString(HelpLinks::MimeTypeOf(topic)), buffer);
}
