#include <KORVAutlwin/frame/InfoDialog.h>

#include <KORVAutlwin/frame/CustomMessageBoxDlg.h>
#include <KORVAutlwin/frame/GUIUtilities.h>
#include <KORVAutlwin/frame/TsMessageBox.h>

#include <KORVAutl/LanguageString.h>

#include <QCheckBox>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr unsigned int kDontShowAgainText = 13199;
constexpr int kButtonWidth = 50;
constexpr int kAllButtons = InfoDialog::eClose | InfoDialog::eOK | InfoDialog::eCancel | InfoDialog::eYes |
                            InfoDialog::eNo;

InfoDialog::BrowserViewFactory& BrowserFactory()
{
    static InfoDialog::BrowserViewFactory factory;
    return factory;
}

bool IsButton(int value)
{
    return value == InfoDialog::eClose || value == InfoDialog::eOK || value == InfoDialog::eCancel ||
           value == InfoDialog::eYes || value == InfoDialog::eNo;
}

std::string Text(unsigned int id)
{
    return LanguageString::Get(id);
}

} // namespace

InfoDialog::InfoDialog(const char* textValue, ETextFormat textFormat, QWidget* parent)
    : TsDialog(0u, parent)
{
    Init(textValue ? textValue : "", "", textFormat);
}

InfoDialog::InfoDialog(const char* textValue, const char* titleValue, ETextFormat textFormat, QWidget* parent)
    : TsDialog(0u, parent)
{
    Init(textValue ? textValue : "", titleValue ? titleValue : "", textFormat);
}

InfoDialog::InfoDialog(const char* textValue, unsigned int titleId, ETextFormat textFormat, QWidget* parent)
    : TsDialog(0u, parent)
{
    Init(textValue ? textValue : "", Text(titleId), textFormat);
}

InfoDialog::InfoDialog(unsigned int textId, ETextFormat textFormat, QWidget* parent) : TsDialog(0u, parent)
{
    SetResource(textId, textFormat);
    Init(text, "", textFormat);
}

InfoDialog::InfoDialog(unsigned int textId, const char* titleValue, ETextFormat textFormat, QWidget* parent)
    : TsDialog(0u, parent)
{
    SetResource(textId, textFormat);
    Init(text, titleValue ? titleValue : "", textFormat);
}

InfoDialog::InfoDialog(unsigned int textId, unsigned int titleId, ETextFormat textFormat, QWidget* parent)
    : TsDialog(0u, parent)
{
    SetResource(textId, textFormat);
    Init(text, Text(titleId), textFormat);
}

InfoDialog::~InfoDialog() = default;

void InfoDialog::Init(const std::string& textValue, const std::string& titleValue, ETextFormat textFormat)
{
    text = textValue;
    title = titleValue;
    format = textFormat;
}

void InfoDialog::EnableDontShowAgain(const char* key)
{
    dontShowKey = key ? key : "";
}

void InfoDialog::SetDefaultSize(EDialogSize value)
{
    size = value;
}

void InfoDialog::SetButtons(int buttonSet, Buttons defaultChoice)
{
    buttons = buttonSet & kAllButtons;
    defaultButton = defaultChoice;
}

void InfoDialog::SetText(const char* value, ETextFormat textFormat)
{
    text = value ? value : "";
    format = textFormat;
    url.clear();
}

void InfoDialog::SetResource(unsigned int id, ETextFormat textFormat)
{
    SetText(textFormat == eBrowserText ? GUIUtilities::ReadResource(id).c_str() : LanguageString::Get(id), textFormat);
}

void InfoDialog::SetURL(const char* value)
{
    url = value ? value : "";
    format = eBrowserText;
}

void InfoDialog::SetBrowserViewFactory(BrowserViewFactory factory)
{
    BrowserFactory() = std::move(factory);
}

bool InfoDialog::WillShow(const char* key)
{
    if (!key || !*key)
        return true;
    return !IsButton(korva::GetDontShowAgainValue(key, 0));
}

int InfoDialog::AnswerOf(int button)
{
    switch (button) {
    case eOK: return IDOK;
    case eYes: return IDYES;
    case eNo: return IDNO;
    default: return IDCANCEL;
    }
}

int InfoDialog::DoModal()
{
    if (!dontShowKey.empty()) {
        const int stored = korva::GetDontShowAgainValue(dontShowKey.c_str(), 0);
        if (IsButton(stored))
            return AnswerOf(stored);
    }
    Build();
    return exec();
}

QWidget* InfoDialog::CreateTextView()
{
    if (format == eBrowserText) {
        if (const BrowserViewFactory& factory = BrowserFactory())
            return factory(this, text, url);
        // Stand-in until the HTML views install the browser: Qt's rich text.
        auto* browser = new QTextBrowser(this);
        browser->setOpenExternalLinks(true);
        if (!url.empty())
            browser->setSource(QUrl::fromUserInput(QString::fromStdString(url)));
        else
            browser->setHtml(QString::fromStdString(text));
        return browser;
    }
    auto* plain = new QPlainTextEdit(this);
    plain->setReadOnly(true);
    plain->setPlainText(QString::fromStdString(text));
    return plain;
}

void InfoDialog::Build()
{
    if (mButtonRow)
        return;
    setWindowTitle(QString::fromStdString(korva::MessageTitle(title.c_str())));
    setSizeGripEnabled(true);

    QWidget* view = CreateTextView();
    view->setProperty("ctrlId", kTextCtrlId);

    mButtonRow = new QHBoxLayout;
    if (!dontShowKey.empty()) {
        mCheckBox = new QCheckBox(QString::fromUtf8(LanguageString::Get(kDontShowAgainText)), this);
        mCheckBox->setProperty("ctrlId", kCheckBoxCtrlId);
        mButtonRow->addWidget(mCheckBox);
    }
    mButtonRow->addStretch(1);
    mButtonsAt = mButtonRow->count();
    // From the right edge to the left.
    if (buttons & eClose)
        AddButton(eClose, QString::fromStdString(korva::MessageBoxButtonText(IDCLOSE)));
    if (buttons & eCancel)
        AddButton(eCancel, QString::fromStdString(korva::MessageBoxButtonText(IDCANCEL)));
    if (buttons & eNo)
        AddButton(eNo, QStringLiteral("No"));
    if (buttons & eOK)
        AddButton(eOK, QStringLiteral("OK"));
    if (buttons & eYes)
        AddButton(eYes, QStringLiteral("Yes"));

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(view, 1);
    layout->addLayout(mButtonRow);

    QSize most;
    switch (size) {
    case eSmallSize: most = QSize(FromDlgX(200), FromDlgY(120)); break;
    case eMediumSize: most = QSize(FromDlgX(300), FromDlgY(200)); break;
    case eLargeSize: most = QSize(FromDlgX(420), FromDlgY(300)); break;
    }
    // The size chosen is the most the dialog takes at first; a short plain
    // text gets a dialog as tall as its lines need (a page may scroll instead).
    if (format == ePlainText) {
        auto* plain = static_cast<QPlainTextEdit*>(view);
        const QMargins margins = layout->contentsMargins();
        // Frame and document margin on each side of the text.
        const int border = plain->frameWidth() + static_cast<int>(plain->document()->documentMargin());
        const int textWidth = most.width() - margins.left() - margins.right() - 2 * border;
        const QRect lines = plain->fontMetrics().boundingRect(QRect(0, 0, std::max(textWidth, 1), 1 << 20),
                                                              Qt::TextWordWrap, plain->toPlainText());
        const int textHeight = lines.height() + 2 * border + plain->fontMetrics().height();
        const int height = margins.top() + textHeight + layout->spacing() + mButtonRow->sizeHint().height() +
                           margins.bottom();
        most.setHeight(std::min(most.height(), height));
    }
    resize(most);
}

QPushButton* InfoDialog::AddButton(Buttons button, const QString& caption)
{
    auto* pushButton = new QPushButton(caption, this);
    pushButton->setProperty("ctrlId", button == eClose ? IDCLOSE : AnswerOf(button));
    pushButton->setMinimumWidth(FromDlgX(kButtonWidth));
    connect(pushButton, &QPushButton::clicked, this, [this, button] { OnButton(button); });
    // Each new button stands left of those already there, right of the check box.
    mButtonRow->insertWidget(mButtonsAt, pushButton);
    if (button == defaultButton) {
        pushButton->setDefault(true);
        mDefault = pushButton;
    }
    return pushButton;
}

void InfoDialog::OnButton(Buttons button)
{
    CheckDontShowAgain(button);
    done(AnswerOf(button));
}

void InfoDialog::CheckDontShowAgain(Buttons button)
{
    if (dontShowKey.empty() || !mCheckBox)
        return;
    korva::WriteDontShowAgainValue(dontShowKey.c_str(), mCheckBox->isChecked() ? button : 0);
}

void InfoDialog::showEvent(QShowEvent* event)
{
    TsDialog::showEvent(event);
    if (mDefault && !mFocusSet) {
        mFocusSet = true;
        mDefault->setFocus();
    }
}

void InfoDialog::reject()
{
    done(IDCANCEL);
}
