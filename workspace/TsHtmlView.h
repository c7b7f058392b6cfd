#pragma once
/// \class TsHtmlView
/// A view of HTML that the application supplies as strings or resources: body
/// and style are written straight into an "about:blank" document. The
/// application's context menu and keys replace the browser's, "app:" links
/// become commands, and generated content is saved as a web page file.
///
/// Keys in the browser window with Ctrl held: A selects all, C copies, F finds,
/// P prints, S saves (the browser's own save for a page loaded from a URL, a
/// file dialog for generated content). Shift+F10, the menu key and the right
/// mouse button (on release) show the view's popup menu; the browser's own menu
/// never shows, even when the popup menu is disabled.

#include <KORVAutlwin/workspace/AcceleratorTable.h>
#include <KORVAutlwin/workspace/HtmlBrowserView.h>

#include <string>

class TsHtmlView : public HtmlBrowserView
{
    Q_OBJECT
public:
    /// The menu resource of the popup menu by default; kNoPopupMenu shows none.
    static constexpr unsigned int kDefaultPopupMenuID = 16239;
    static constexpr unsigned int kNoPopupMenu = static_cast<unsigned int>(-1);
    /// The accelerators tried first on every key.
    static constexpr unsigned int kAccelerators = 21514;

    explicit TsHtmlView(QWidget* parent = nullptr);
    ~TsHtmlView() override;

    /// Shows `body` (the inner HTML of the document's body) with the style sheet
    /// `css`. With an empty css, a style element in body gives the style, lower-cased
    /// and starting with the ">" of its start tag. The content is written at once
    /// into a complete document that is not busy, else at the next document
    /// complete (navigating to "about:blank" first when there is no document yet);
    /// of several calls before then, the last one is written, once.
    void SetHTML(const char* body, const char* css);
    /// The style comes from the HTML resource `cssResource`.
    void SetHTML(const char* body, unsigned int cssResource);
    /// Body and style from HTML resources; with cssResource kNoPopupMenu (-1) the
    /// body resource is loaded as a page of its own.
    void SetHTML(unsigned int bodyResource, unsigned int cssResource);

    void SetPopupMenuID(unsigned int id) { mPopupMenuID = id; }
    void DisablePopupMenu() { mPopupMenuID = kNoPopupMenu; }
    unsigned int GetPopupMenuID() const { return mPopupMenuID; }
    /// True while content waits for the document.
    bool IsPending() const { return mPending != 0; }

    /// Shows the first sub-menu of menu resource `id` at the screen point `point`.
    virtual void DisplayContextMenu(QWidget* window, unsigned int id, const QPoint& point);

    void OnBeforeNavigate2(const QString& url, bool& cancel) override;
    void OnDocumentComplete(const QString& url) override;
    bool PreTranslateMessage(QObject* window, QEvent* event) override;

    void OnContextMenu(QWidget* window, const QPoint& point);
    void OnEditSelectAll();
    void OnEditFind();
    /// Saves the page; see the class description.
    void OnFileSaveAs();
    /// Writes generated content to `path`, titled `title`; false, with the system's
    /// reason in `error`, when the file cannot be written.
    bool SaveGeneratedPage(const std::string& path, const std::string& title, std::string& error);

protected:
    const DHtmlCommandRow* GetCommandTable() const override;
    static const DHtmlCommandRow m_commands[];

private:
    void PrivateSetHTML();

    unsigned int mPopupMenuID = kDefaultPopupMenuID;
    AcceleratorTable mAccelerators;
    std::wstring mBody;
    std::wstring mStyle;
    int mPending = 0;
};
