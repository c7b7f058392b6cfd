#pragma once
/// \file IHTMLDocumentUtilities.h
/// Functions over the style sheets of a document shown by the browser, with the
/// results of the browser's document interfaces (S_OK, E_FAIL).
///
/// The document lives in the browser's process: each function runs a script in
/// the page and waits for its answer, handling events meanwhile, as a call into
/// the browser does.

#include <KORVAutl/HResult.h>

#include <QString>
#include <QVariant>

#include <memory>
#include <string>

class QWebEnginePage;


/// The document of a page.
class IHTMLDocument2
{
public:
    explicit IHTMLDocument2(QWebEnginePage* page) : mPage(page) {}
    QWebEnginePage* GetPage() const { return mPage; }
    /// The value of the script `script` in the page; invalid when the page is
    /// gone or does not answer. A `repeatable` script (one that may run twice
    /// without harm) is run again when its answer is slow in coming.
    QVariant Evaluate(const QString& script, bool repeatable = true) const;

private:
    QWebEnginePage* mPage;
};

/// Style sheet `index` of a document (document.styleSheets).
class IHTMLStyleSheet
{
public:
    IHTMLStyleSheet(const IHTMLDocument2* document, int index) : mDocument(document), mIndex(index) {}
    const IHTMLDocument2* GetDocument() const { return mDocument; }
    int GetIndex() const { return mIndex; }
    /// The script expression of the sheet.
    QString Expression() const { return QStringLiteral("document.styleSheets[%1]").arg(mIndex); }

private:
    const IHTMLDocument2* mDocument;
    int mIndex;
};

/// The style of one rule of a style sheet.
class IHTMLRuleStyle
{
public:
    IHTMLRuleStyle(IHTMLStyleSheet sheet, int rule) : mSheet(sheet), mRule(rule) {}
    int GetRuleIndex() const { return mRule; }
    /// The style's text as the browser gives it ("color: red;").
    std::string GetCSSText() const;
    /// Sets one property of the style.
    void SetAttribute(const char* name, const char* value);

private:
    IHTMLStyleSheet mSheet;
    int mRule;
};

namespace IHTMLDocumentUtilities {

/// The CSS text of the document's first style sheet. With no sheet the result is
/// S_OK and `css` stays as it was; a null document gives E_FAIL.
HRESULT GetCSSText(IHTMLDocument2* document, std::wstring& css);
/// Sets the CSS text of the first style sheet, making one (at index 0) when the
/// document has none. A null document gives E_FAIL.
HRESULT SetCSSText(IHTMLDocument2* document, const std::wstring& css);
/// The style of the first rule of `sheet` whose selector equals `selector` without
/// regard to case. E_FAIL for a null sheet, no rules, or no match.
HRESULT GetIHTMLRuleStyle(const char* selector, IHTMLStyleSheet* sheet, std::unique_ptr<IHTMLRuleStyle>& out);
/// The same on the document's first style sheet; E_FAIL when it has none.
HRESULT GetIHTMLRuleStyle(const char* selector, IHTMLDocument2* document, std::unique_ptr<IHTMLRuleStyle>& out);
/// Adds the rules of `cssText` (HtmlText::ParseRules) that `sheet` lacks, in the
/// order of their selectors, at its end; existing rules stay as they are.
void AddMissingHTMLRuleStyles(const std::string& cssText, IHTMLStyleSheet* sheet);

} // namespace IHTMLDocumentUtilities
