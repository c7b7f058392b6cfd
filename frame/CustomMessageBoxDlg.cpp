#include <KORVAutlwin/frame/CustomMessageBoxDlg.h>

#include <KORVAutlwin/frame/LimitLineLength.h>
#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/WinApp.h>

#include <KORVAutl/LanguageString.h>
#include <KORVAutl/TsSystemInfo.h>

#include <QApplication>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace {

constexpr unsigned int kDefaultCheckBoxText = 13199;

// Metrics of the layout, in dialog units.
constexpr int kMarginX = 4;
constexpr int kMarginY = 6;
constexpr int kGap = 6;
constexpr int kCheckBoxDistance = 4;
constexpr int kButtonWidth = 50;

unsigned int CaptionId(int buttonId)
{
    switch (buttonId) {
    case IDOK: return 30700;
    case IDCANCEL: return 30701;
    case IDABORT: return 30702;
    case IDRETRY: return 30703;
    case IDIGNORE: return 30704;
    case IDYES: return 30705;
    case IDNO: return 30706;
    case IDCLOSE: return 30707;
    case IDHELP: return 30708;
    case IDTRYAGAIN: return 30709;
    case IDCONTINUE: return 30710;
    default: return 0;
    }
}

} // namespace

namespace korva {

std::vector<int> MessageBoxButtonIds(unsigned int nType)
{
    switch (nType & MB_TYPEMASK) {
    case MB_OKCANCEL: return {IDOK, IDCANCEL};
    case MB_ABORTRETRYIGNORE: return {IDABORT, IDRETRY, IDIGNORE};
    case MB_YESNOCANCEL: return {IDYES, IDNO, IDCANCEL};
    case MB_YESNO: return {IDYES, IDNO};
    case MB_RETRYCANCEL: return {IDRETRY, IDCANCEL};
    case MB_CANCELTRYCONTINUE: return {IDCANCEL, IDTRYAGAIN, IDCONTINUE};
    default: return {IDOK};
    }
}

std::string MessageBoxButtonText(int id)
{
    const unsigned int caption = CaptionId(id);
    return caption ? LanguageString::Get(caption) : std::string();
}

QLabel* MakeQuestionText(TsDialog* dialog, int ctrlId)
{
    auto* text = new QLabel(dialog);
    text->setTextFormat(Qt::PlainText);
    text->setWordWrap(true);
    text->setProperty("ctrlId", ctrlId);
    return text;
}

QPushButton* MakeAnswerButton(TsDialog* dialog, int ctrlId, const QString& caption, int result)
{
    constexpr int kButtonWidth = 60;
    auto* button = new QPushButton(caption, dialog);
    button->setProperty("ctrlId", ctrlId);
    button->setMinimumWidth(dialog->FromDlgX(kButtonWidth));
    QObject::connect(button, &QPushButton::clicked, dialog, [dialog, result] { dialog->done(result); });
    return button;
}

void LayOutQuestion(TsDialog* dialog, QLabel* text, const std::vector<QPushButton*>& buttons)
{
    auto* row = new QHBoxLayout;
    row->addStretch(1);
    for (QPushButton* button : buttons)
        row->addWidget(button);
    row->addStretch(1);

    auto* icon = new QLabel(dialog);
    icon->setObjectName(QStringLiteral("icon"));
    icon->setPixmap(MessageBoxIcon(MB_ICONQUESTION, dialog));
    auto* top = new QHBoxLayout;
    top->addWidget(icon, 0, Qt::AlignTop);
    top->addWidget(text, 1);

    auto* layout = new QVBoxLayout(dialog);
    layout->addLayout(top, 1);
    layout->addLayout(row);
    dialog->setMinimumWidth(dialog->FromDlgX(220));
}

QPixmap MessageBoxIcon(unsigned int nType, const QWidget* widget)
{
    QStyle::StandardPixmap kind;
    switch (nType & MB_ICONMASK) {
    case MB_ICONHAND: kind = QStyle::SP_MessageBoxCritical; break;
    case MB_ICONQUESTION: kind = QStyle::SP_MessageBoxQuestion; break;
    case MB_ICONASTERISK: kind = QStyle::SP_MessageBoxInformation; break;
    default: kind = QStyle::SP_MessageBoxWarning; break;
    }
    QStyle* style = widget ? widget->style() : QApplication::style();
    const int size = style->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, widget);
    return style->standardIcon(kind, nullptr, widget).pixmap(size, size);
}

bool MessageBoxEscapeCancels(unsigned int nType)
{
    const unsigned int buttons = nType & MB_TYPEMASK;
    return buttons != MB_YESNO && buttons != MB_ABORTRETRYIGNORE;
}

std::size_t MessageBoxDefaultIndex(unsigned int nType, std::size_t buttonCount)
{
    const std::size_t named = (nType & MB_DEFMASK) >> 8;
    if (named > 0 && named < buttonCount)
        return named;
    // Yes is the first button wherever there is one.
    return 0;
}

QWidget* GetSafeOwner()
{
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    if (WinApp* app = WinApp::GetApp())
        if (QWidget* main = app->GetMainWnd())
            return main->window();
    return QApplication::activeWindow();
}

std::string MessageTitle(const char* title)
{
    if (title && *title)
        return title;
    if (WinApp* app = WinApp::GetApp())
        return app->GetAppName();
    return TsSystemInfo::GetApplicationName();
}

} // namespace korva

CustomMessageBoxDlg::CustomMessageBoxDlg(unsigned int type, unsigned int help, QWidget* parent)
    : TsDialog(0u, parent, help), nType(type), helpId(help)
{
    setWindowTitle(QString::fromStdString(korva::MessageTitle(nullptr)));
    // Where Escape gives no answer, neither does the title bar.
    if (!korva::MessageBoxEscapeCancels(nType))
        setWindowFlag(Qt::WindowCloseButtonHint, false);
}

CustomMessageBoxDlg::~CustomMessageBoxDlg() = default;

void CustomMessageBoxDlg::SetText(const char* value)
{
    text = value ? value : "";
}

void CustomMessageBoxDlg::SetTitle(const char* value)
{
    title = value ? value : "";
    setWindowTitle(QString::fromStdString(korva::MessageTitle(title.c_str())));
}

void CustomMessageBoxDlg::SetCheckBox(bool isChecked, const char* caption)
{
    hasCheckBox = true;
    checked = isChecked ? 1 : 0;
    checkBoxText = caption && *caption ? caption : LanguageString::Get(kDefaultCheckBoxText);
    if (mCheckBox) {
        mCheckBox->setText(QString::fromStdString(checkBoxText));
        mCheckBox->setChecked(isChecked);
    }
}

void CustomMessageBoxDlg::SetButtonText(int buttonId, const char* caption)
{
    if (caption && *caption)
        buttonTexts[buttonId] = caption;
    else
        buttonTexts.erase(buttonId);
}

void CustomMessageBoxDlg::setVisible(bool visible)
{
    const bool first = visible && !mInitialized;
    if (first) {
        mInitialized = true;
        OnInitDialog();
    }
    TsDialog::setVisible(visible);
    if (first && mDefaultButton)
        mDefaultButton->setFocus();
}

void CustomMessageBoxDlg::OnInitDialog()
{
    auto* icon = new QLabel(this);
    icon->setObjectName(QStringLiteral("icon"));
    icon->setPixmap(korva::MessageBoxIcon(nType, this));
    icon->setAlignment(Qt::AlignTop | Qt::AlignHCenter);

    std::string wrapped = text;
    LimitLineLength::ByCharacters(wrapped, kMaxLineLength);
    auto* message = new QLabel(this);
    message->setTextFormat(Qt::PlainText);
    message->setText(QString::fromStdString(wrapped));
    message->setProperty("ctrlId", kTextCtrlId);
    message->setMinimumSize(LimitLineLength::GetBoundsRect(message->fontMetrics(), wrapped).size());
    message->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);

    auto* textColumn = new QVBoxLayout;
    textColumn->setSpacing(FromDlgY(kCheckBoxDistance));
    textColumn->addWidget(message, 1);
    if (hasCheckBox) {
        mCheckBox = new QCheckBox(QString::fromStdString(checkBoxText), this);
        mCheckBox->setProperty("ctrlId", kCheckBoxCtrlId);
        mCheckBox->setChecked(checked != 0);
        connect(mCheckBox, &QCheckBox::toggled, this, [this](bool on) { checked = on ? 1 : 0; });
        textColumn->addWidget(mCheckBox);
    }

    auto* top = new QHBoxLayout;
    top->setSpacing(FromDlgX(kGap));
    top->addWidget(icon, 0, Qt::AlignTop);
    top->addLayout(textColumn, 1);

    const std::vector<int> ids = korva::MessageBoxButtonIds(nType);
    const std::size_t defaultIndex = korva::MessageBoxDefaultIndex(nType, ids.size());
    auto* row = new QHBoxLayout;
    row->setSpacing(FromDlgX(kGap));
    row->addStretch(1);
    QPushButton* defaultButton = nullptr;
    auto addButton = [&](int id) {
        const auto custom = buttonTexts.find(id);
        const std::string caption = custom != buttonTexts.end() ? custom->second : korva::MessageBoxButtonText(id);
        auto* button = new QPushButton(QString::fromStdString(caption), this);
        button->setProperty("ctrlId", id);
        button->setMinimumWidth(FromDlgX(kButtonWidth));
        connect(button, &QPushButton::clicked, this, [this, id] { OnButton(id); });
        row->addWidget(button);
        return button;
    };
    for (std::size_t i = 0; i < ids.size(); ++i) {
        QPushButton* button = addButton(ids[i]);
        if (i == defaultIndex)
            defaultButton = button;
    }
    if (helpId != 0)
        addButton(IDHELP);
    row->addStretch(1);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(FromDlgX(kMarginX), FromDlgY(kMarginY), FromDlgX(kMarginX), FromDlgY(kMarginY));
    layout->setSpacing(FromDlgY(kGap));
    layout->addLayout(top);
    layout->addLayout(row);
    // The box is as large as its text needs, and no larger.
    layout->setSizeConstraint(QLayout::SetFixedSize);

    mDefaultButton = defaultButton;
    if (defaultButton)
        defaultButton->setDefault(true);
}

void CustomMessageBoxDlg::OnButton(int id)
{
    if (id == IDHELP) {
        ExecuteCommand(IDHELP);
        return;
    }
    done(id);
}

void CustomMessageBoxDlg::keyPressEvent(QKeyEvent* event)
{
    const bool escape = event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier;
    const bool copy = event->key() == Qt::Key_C && (event->modifiers() & Qt::ControlModifier);
    if (escape || copy) {
        // Ctrl+C counts as Escape in this box; neither answers a question that has no way out.
        event->accept();
        if (korva::MessageBoxEscapeCancels(nType))
            done(IDCANCEL);
        return;
    }
    TsDialog::keyPressEvent(event);
}

void CustomMessageBoxDlg::reject()
{
    done(IDCANCEL);
}
