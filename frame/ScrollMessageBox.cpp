#include <KORVAutlwin/frame/ScrollMessageBox.h>

#include <KORVAutlwin/frame/CustomMessageBoxDlg.h>

#include <KORVAutl/LanguageString.h>

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSizeGrip>
#include <QVBoxLayout>

namespace {
// The first size, in dialog units: room for about eighty characters by twenty lines.
constexpr int kWidth = 330;
constexpr int kHeight = 200;
constexpr int kGap = 6;
constexpr int kButtonWidth = 50;
} // namespace

ScrollMessageBox::ScrollMessageBox(const char* text, unsigned int type, const char* title, QWidget* parent)
    : TsDialog(0u, parent), nType(type)
{
    setWindowTitle(QString::fromStdString(korva::MessageTitle(title)));
    setSizeGripEnabled(true);

    auto* icon = new QLabel(this);
    icon->setProperty("ctrlId", kIconCtrlId);
    icon->setPixmap(korva::MessageBoxIcon(nType, this));
    icon->setAlignment(Qt::AlignTop | Qt::AlignHCenter);

    mText = new QPlainTextEdit(this);
    mText->setReadOnly(true);
    mText->setPlainText(QString::fromUtf8(text ? text : ""));
    mText->setProperty("ctrlId", kTextCtrlId);
    mText->setLineWrapMode(QPlainTextEdit::NoWrap);
    mText->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);

    auto* top = new QHBoxLayout;
    top->setSpacing(FromDlgX(kGap));
    top->addWidget(icon, 0, Qt::AlignTop);
    top->addWidget(mText, 1);

    const std::vector<int> ids = korva::MessageBoxButtonIds(nType);
    const std::size_t defaultIndex = korva::MessageBoxDefaultIndex(nType, ids.size());
    auto* row = new QHBoxLayout;
    row->setSpacing(FromDlgX(kGap));
    row->addStretch(1);
    for (std::size_t i = 0; i < ids.size(); ++i) {
        const int id = ids[i];
        auto* button = new QPushButton(QString::fromStdString(korva::MessageBoxButtonText(id)), this);
        button->setProperty("ctrlId", id);
        button->setMinimumWidth(FromDlgX(kButtonWidth));
        connect(button, &QPushButton::clicked, this, [this, id] { done(id); });
        row->addWidget(button);
        if (i == defaultIndex) {
            button->setDefault(true);
            mDefaultButton = button;
        }
    }
    row->addStretch(1);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top, 1);
    layout->addLayout(row);
    resize(FromDlgX(kWidth), FromDlgY(kHeight));
}

ScrollMessageBox::~ScrollMessageBox() = default;

void ScrollMessageBox::setVisible(bool visible)
{
    TsDialog::setVisible(visible);
    if (visible && !mShown) {
        mShown = true;
        if (mDefaultButton)
            mDefaultButton->setFocus();
    }
}

void ScrollMessageBox::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
        event->accept();
        if (korva::MessageBoxEscapeCancels(nType))
            done(IDCANCEL);
        return;
    }
    TsDialog::keyPressEvent(event);
}

void ScrollMessageBox::reject()
{
    done(IDCANCEL);
}

int TsScrollMessageBox(const char* text, unsigned int nType, const char* title)
{
    ScrollMessageBox box(text, nType, title, korva::GetSafeOwner());
    return box.exec();
}

int TsScrollMessageBox(unsigned int textId, unsigned int nType, const char* title)
{
    return TsScrollMessageBox(LanguageString::Get(textId), nType, title);
}
