#include <KORVAutlwin/workspace/IHTMLDocumentUtilities.h>

#include <KORVAutlwin/workspace/HtmlText.h>

#include <QEventLoop>
#include <QJsonDocument>
#include <QPointer>
#include <QTimer>
#include <QWebEnginePage>

#include <iterator>
#include <vector>

namespace {

constexpr int kScriptTimeoutMs = 10000;

QString JsString(const std::string& text)
{
    return QString::fromUtf8(QJsonDocument::fromVariant(QVariantList{QString::fromStdString(text)}).toJson(
                                 QJsonDocument::Compact))
        .mid(1)
        .chopped(1);
}

} // namespace

QVariant IHTMLDocument2::Evaluate(const QString& script, bool repeatable) const
{
    // Now and then the browser drops a script's answer: a script that may run
    // twice is asked again after a short wait, any other waits for the longest.
    static const int waits[] = {1000, 2000, kScriptTimeoutMs - 3000};
    for (int wait : repeatable ? std::vector<int>(std::begin(waits), std::end(waits)) : std::vector<int>{kScriptTimeoutMs}) {
        QPointer<QWebEnginePage> page = mPage;
        if (!page)
            return {};
        // A late answer lands in a state kept alive by the callback, after this call gave up on it.
        struct Answer
        {
            QVariant value;
            bool done = false;
            QPointer<QEventLoop> loop;
        };
        auto answer = std::make_shared<Answer>();
        QEventLoop loop;
        answer->loop = &loop;
        page->runJavaScript(script, [answer](const QVariant& value) {
            answer->value = value;
            answer->done = true;
            if (answer->loop)
                answer->loop->quit();
        });
        QObject::connect(page, &QObject::destroyed, &loop, &QEventLoop::quit);
        QTimer::singleShot(wait, &loop, &QEventLoop::quit);
        if (!answer->done)
            loop.exec(QEventLoop::ExcludeUserInputEvents);
        answer->loop = nullptr;
        if (answer->done)
            return answer->value;
    }
    return {};
}

std::string IHTMLRuleStyle::GetCSSText() const
{
    return mSheet.GetDocument()
        ->Evaluate(QStringLiteral("(function(){var r=%1.cssRules[%2];return r&&r.style?r.style.cssText:'';})()")
                       .arg(mSheet.Expression())
                       .arg(mRule))
        .toString()
        .toStdString();
}

void IHTMLRuleStyle::SetAttribute(const char* name, const char* value)
{
    mSheet.GetDocument()->Evaluate(QStringLiteral("%1.cssRules[%2].style.setProperty(%3,%4)")
                                       .arg(mSheet.Expression())
                                       .arg(mRule)
                                       .arg(JsString(name), JsString(value)));
}

namespace IHTMLDocumentUtilities {

HRESULT GetCSSText(IHTMLDocument2* document, std::wstring& css)
{
    if (!document)
        return E_FAIL;
    const QVariant text = document->Evaluate(QStringLiteral(
        "(function(){var s=document.styleSheets;if(!s.length)return null;"
        "return Array.from(s[0].cssRules).map(function(r){return r.cssText;}).join('\\n');})()"));
    if (!text.isNull() && text.isValid())
        css = text.toString().toStdWString();
    return S_OK;
}

HRESULT SetCSSText(IHTMLDocument2* document, const std::wstring& css)
{
    if (!document)
        return E_FAIL;
    // A sheet of our own, first in the head, holds what the view was given.
    document->Evaluate(QStringLiteral(
        "(function(css){var s=document.styleSheets;var node=s.length?s[0].ownerNode:null;"
        "if(!node||node.tagName.toLowerCase()!=='style'){node=document.createElement('style');"
        "var head=document.head||document.documentElement.insertBefore(document.createElement('head'),"
        "document.documentElement.firstChild);head.insertBefore(node,head.firstChild);}"
        "node.textContent=css;})(%1)")
                           .arg(JsString(QString::fromStdWString(css).toStdString())));
    return S_OK;
}

HRESULT GetIHTMLRuleStyle(const char* selector, IHTMLStyleSheet* sheet, std::unique_ptr<IHTMLRuleStyle>& out)
{
    if (!sheet || !selector)
        return E_FAIL;
    const QVariant found = sheet->GetDocument()->Evaluate(
        QStringLiteral("(function(sel){var sh=%1;if(!sh)return -1;var r=sh.cssRules;sel=sel.toLowerCase();"
                       "for(var i=0;i<r.length;++i)if(r[i].selectorText&&r[i].selectorText.toLowerCase()===sel)"
                       "return i;return -1;})(%2)")
            .arg(sheet->Expression(), JsString(selector)));
    const int index = found.isValid() ? found.toInt() : -1;
    if (index < 0)
        return E_FAIL;
    out = std::make_unique<IHTMLRuleStyle>(*sheet, index);
    return out ? S_OK : E_FAIL;
}

HRESULT GetIHTMLRuleStyle(const char* selector, IHTMLDocument2* document, std::unique_ptr<IHTMLRuleStyle>& out)
{
    if (!document || document->Evaluate(QStringLiteral("document.styleSheets.length")).toInt() < 1)
        return E_FAIL;
    IHTMLStyleSheet first(document, 0);
    return GetIHTMLRuleStyle(selector, &first, out);
}

void AddMissingHTMLRuleStyles(const std::string& cssText, IHTMLStyleSheet* sheet)
{
    if (!sheet)
        return;
    for (const auto& [selector, style] : HtmlText::ParseRules(cssText)) {
        std::unique_ptr<IHTMLRuleStyle> existing;
        if (GetIHTMLRuleStyle(selector.c_str(), sheet, existing) == S_OK)
            continue;
        sheet->GetDocument()->Evaluate(QStringLiteral("(function(sh,sel,st){try{sh.insertRule(sel+'{'+st+'}',"
                                                      "sh.cssRules.length);}catch(e){}})(%1,%2,%3)")
                                           .arg(sheet->Expression(), JsString(selector), JsString(style)),
                                       false);
    }
}

} // namespace IHTMLDocumentUtilities
