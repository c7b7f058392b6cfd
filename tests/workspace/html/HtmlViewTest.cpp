// TsHtmlView on a real browser, offscreen: content written into the blank
// document, the style sheet functions, "app:" links clicked with the mouse,
// the view's own menu and keys, and the saved page.

#include "BrowserTestSupport.h"

#include <KORVAutlwin/workspace/IHTMLDocumentUtilities.h>
#include <KORVAutlwin/workspace/TsHtmlCtrl.h>
#include <KORVAutlwin/workspace/TsHtmlView.h>

#include <QWebEngineView>

namespace {

using korva::test::Application;
using korva::test::Eval;
using korva::test::Until;
using korva::test::WhenModal;

class RecordingView : public TsHtmlView
{
public:
    std::vector<std::pair<unsigned int, QPoint>> menus;
    void DisplayContextMenu(QWidget*, unsigned int id, const QPoint& point) override { menus.emplace_back(id, point); }
};

struct Shown
{
    std::unique_ptr<RecordingView> view;
    Shown()
    {
        Application();
        view = std::make_unique<RecordingView>();
        view->resize(500, 300);
        view->show();
    }
    bool Write(const char* body, const char* css = "")
    {
        view->SetHTML(body, css);
        return Until([&] { return !view->IsPending() && !view->GetBusy(); }) &&
               Until([&] { return view->GetBrowser()->focusProxy() != nullptr; });
    }
    QPoint Centre(const char* id)
    {
        const auto box = Eval(*view, QStringLiteral("(function(){var r=document.getElementById('%1')"
                                                    ".getBoundingClientRect();return Math.round(r.left+r.width/2)+','"
                                                    "+Math.round(r.top+r.height/2);})()").arg(id)).split(',');
        return box.size() == 2 ? QPoint(box[0].toInt(), box[1].toInt()) : QPoint();
    }
};

TEST(HtmlViewTest, LastContentBeforeTheDocumentCompletesIsWrittenOnce)
{
    Shown s;
    int completes = 0;
    QObject::connect(s.view.get(), &HtmlBrowserView::DocumentComplete, [&] { ++completes; });
    s.view->SetHTML("<p id='a'>first</p>", "");
    ASSERT_TRUE(s.Write("<p id='a'>second</p>", "p { color: rgb(255, 0, 0) }"));
    EXPECT_EQ(completes, 1);
    EXPECT_EQ(Eval(*s.view, "document.body.innerText"), "second");
    EXPECT_EQ(Eval(*s.view, "getComputedStyle(document.getElementById('a')).color"), "rgb(255, 0, 0)");
    EXPECT_EQ(s.view->GetLocationURL(), "about:blank");
}

TEST(HtmlViewTest, StyleSheetFunctionsFindAndMergeRules)
{
    Shown s;
    ASSERT_TRUE(s.Write("<p class='Note'>x</p>"));
    IHTMLDocument2 document(s.view->GetPage());
    std::unique_ptr<IHTMLRuleStyle> rule;
    std::wstring css = L"untouched";
    EXPECT_EQ(IHTMLDocumentUtilities::GetCSSText(&document, css), S_OK);
    EXPECT_EQ(css, L"untouched");
    EXPECT_EQ(IHTMLDocumentUtilities::GetIHTMLRuleStyle("p", &document, rule), E_FAIL);
    EXPECT_EQ(IHTMLDocumentUtilities::GetCSSText(nullptr, css), E_FAIL);

    EXPECT_EQ(IHTMLDocumentUtilities::SetCSSText(&document, L"P.Note { color: red; }"), S_OK);
    EXPECT_EQ(IHTMLDocumentUtilities::GetIHTMLRuleStyle("p.NOTE", &document, rule), S_OK);
    ASSERT_TRUE(rule);
    EXPECT_EQ(rule->GetCSSText(), "color: red;");

    IHTMLStyleSheet sheet(&document, 0);
    IHTMLDocumentUtilities::AddMissingHTMLRuleStyles("p.note { color: blue }\nh1 { margin: 0px }\n"
                                                      "@media print { td { x: y } }", &sheet);
    EXPECT_EQ(IHTMLDocumentUtilities::GetIHTMLRuleStyle("P.Note", &sheet, rule), S_OK);
    EXPECT_EQ(rule->GetCSSText(), "color: red;");
    EXPECT_EQ(IHTMLDocumentUtilities::GetIHTMLRuleStyle("h1", &sheet, rule), S_OK);
    EXPECT_EQ(IHTMLDocumentUtilities::GetCSSText(&document, css), S_OK);
    EXPECT_EQ(css.find(L"td"), std::wstring::npos);
}

TEST(HtmlViewTest, AppLinksClickedWithTheMouseRunMappedCommandsOnly)
{
    Shown s;
    CmdTarget target;
    std::vector<unsigned int> ran;
    target.OnCommand(34701, [&] { ran.push_back(34701); });
    s.view->SetCmdMap({{"Fit", 34701}}, &target);
    ASSERT_TRUE(s.Write("<a id='fit' href='APP:Fit' style='font-size:40px'>Fit</a><br>"
                        "<a id='other' href='app:fit' style='font-size:40px'>unknown</a>"));
    for (const char* id : {"other", "fit"}) {
        SCOPED_TRACE(id);
        const QPoint centre = s.Centre(id);
        ASSERT_FALSE(centre.isNull());
        QTest::mouseClick(s.view->GetBrowser()->focusProxy(), Qt::LeftButton, {}, centre);
        Until([&] { return !ran.empty(); }, std::string(id) == "fit" ? 10000 : 1500);
        EXPECT_EQ(s.view->GetLocationURL(), "about:blank");
    }
    EXPECT_EQ(ran, std::vector<unsigned int>{34701});
    EXPECT_EQ(Eval(*s.view, "document.getElementById('fit').innerText"), "Fit");
}

TEST(HtmlViewTest, RightButtonAndKeysShowTheViewsMenuNotTheBrowsers)
{
    Shown s;
    ASSERT_TRUE(s.Write("<p>menu</p>"));
    QWidget* input = s.view->GetBrowser()->focusProxy();
    EXPECT_TRUE(HtmlBrowserView::IsIEWindow(input));
    EXPECT_FALSE(HtmlBrowserView::IsIEWindow(s.view.get()));
    const QPoint at(40, 30);
    QTest::mouseClick(input, Qt::RightButton, {}, at);
    QTest::keyClick(input, Qt::Key_F10, Qt::ShiftModifier);
    ASSERT_EQ(s.view->menus.size(), 2u);
    EXPECT_EQ(s.view->menus[0], std::make_pair(16239u, input->mapToGlobal(at)));
    EXPECT_EQ(s.view->menus[1].second, s.view->mapToGlobal(QPoint(0, 0)));

    // F3 is none of the view's own keys: the accelerators make it the find command.
    QString found;
    WhenModal([&](QWidget* dialog) {
        found = dialog->windowTitle();
        QTimer::singleShot(100, dialog, [dialog] { dialog->close(); });
    });
    QTest::keyClick(input, Qt::Key_F3);
    EXPECT_EQ(found, "Find");
    s.view->DisablePopupMenu();
    QMouseEvent release(QEvent::MouseButtonRelease, QPointF(at), QPointF(input->mapToGlobal(at)), Qt::RightButton,
                        Qt::NoButton, Qt::NoModifier);
    EXPECT_TRUE(s.view->PreTranslateMessage(input, &release));
    EXPECT_EQ(s.view->menus.size(), 2u);
}

TEST(HtmlViewTest, CtrlSSavesGeneratedContentThroughTheFileDialog)
{
    Shown s;
    TempDir dir;
    ASSERT_TRUE(s.Write("<p>saved text</p>", "p { color: green; }"));
    const std::string path = dir.File("page.htm");
    QString title;
    WhenModal([&](QWidget* dialog) {
        title = dialog->windowTitle();
        QTimer::singleShot(100, dialog, [dialog] { dialog->close(); });
    });
    QTest::keyClick(s.view->GetBrowser()->focusProxy(), Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(title, "Save As");
    std::string error;
    ASSERT_TRUE(s.view->SaveGeneratedPage(path, "page", error)) << error;
    EXPECT_FALSE(s.view->SaveGeneratedPage(dir.File("no/such/folder.htm"), "x", error));
    EXPECT_FALSE(error.empty());
    const std::string saved = ReadFile(path);
    EXPECT_EQ(saved.rfind("<!DOCTYPE html PUBLIC", 0), 0u) << saved;
    EXPECT_NE(saved.find("<title>page</title><style type=\"text/css\"><!--p { color: green; }--></style></head>"
                         "<body><p>saved text</p></body></html>"),
              std::string::npos)
        << saved;

    // A page from a URL is saved by the browser itself.
    s.view->Navigate2(path, 0);
    ASSERT_TRUE(Until([&] { return s.view->GetLocationURL().rfind("file:", 0) == 0 && !s.view->GetBusy(); }));
    WhenModal([&](QWidget* dialog) {
        title = dialog->windowTitle();
        QTimer::singleShot(100, dialog, [dialog] { dialog->close(); });
    });
    QTest::keyClick(s.view->GetBrowser()->focusProxy(), Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(title, "Save Page");
}

TEST(HtmlViewTest, ControlTakesThePlaceOfTheStatic)
{
    Application();
    QWidget dialog;
    auto* placeholder = new QLabel(&dialog);
    placeholder->setProperty("ctrlId", 1201);
    placeholder->setGeometry(10, 20, 300, 200);
    TsHtmlCtrl control;
    EXPECT_EQ(control.CreateFromStatic(1999, &dialog), 0);
    EXPECT_EQ(control.CreateFromStatic(1201, &dialog), 1);
    EXPECT_EQ(control.parentWidget(), &dialog);
    EXPECT_EQ(control.geometry(), QRect(10, 20, 300, 200));
    EXPECT_TRUE(dialog.findChildren<QLabel*>().isEmpty());
    EXPECT_TRUE(Until([&] { return control.GetReadyState() == READYSTATE_COMPLETE; }));
    control.setParent(nullptr);
}

} // namespace
