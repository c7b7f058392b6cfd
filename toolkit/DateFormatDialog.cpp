#include <KORVAutlwin/toolkit/DateFormatDialog.h>

#include <KORVAutlwin/toolkit/DateFormatHistory.h>

#include <KORVAutlwin/frame/LimitLineLength.h>
#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/RegistrySection.h>
#include <KORVAutlwin/platform/TsUnicode.h>

#include <KORVAutl/LanguageString.h>
#include <KORVAutl/TsTimeUtl.h>

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <memory>

namespace {

constexpr unsigned int kShowDetailsText = 34353;
constexpr unsigned int kHideDetailsText = 34354;
constexpr unsigned int kMeasureText = 34355;
constexpr unsigned int kTitleText = 34356;
constexpr unsigned int kSampleLabelText = 34357;
constexpr unsigned int kFormatLabelText = 34358;

QString Text(unsigned int id)
{
    return QString::fromUtf8(LanguageString::Get(id));
}

// "DateTimeDefaults" below the application's registry key.
std::unique_ptr<RegistrySection> OpenDefaults(bool create)
{
    auto key = std::make_unique<RegistrySection>();
    const std::string path = std::string(GetRegistryBaseKeyName()) + "\\" + DateFormatHistory::kSectionName;
    if (!key->Open(HKEY_CURRENT_USER, path.c_str(), create ? KEY_ALL_ACCESS : KEY_READ, create))
        return nullptr;
    return key;
}

} // namespace

SpecifyDateFormat::SpecifyDateFormat(const std::string& heading, const std::string& sampleDate,
                                     const std::string& format, QWidget* parent)
    : TsDialog(kTemplateId, parent), mHeading(heading), mSampleDate(sampleDate), mFormat(format)
{
    OnInitDialog();
}

SpecifyDateFormat::SpecifyDateFormat(const std::wstring& heading, const std::wstring& sampleDate,
                                     const std::wstring& format, QWidget* parent)
    : SpecifyDateFormat(korva::WideToUtf8(heading), korva::WideToUtf8(sampleDate), korva::WideToUtf8(format), parent)
{
}

SpecifyDateFormat::~SpecifyDateFormat() = default;

std::string SpecifyDateFormat::GetFormatDetails()
{
    return DateFormatHistory::GetFormatDetails();
}

void SpecifyDateFormat::OnInitDialog()
{
    setWindowTitle(Text(kTitleText));
    setSizeGripEnabled(true);

    mHeadingLabel = new QLabel(QString::fromStdString(mHeading), this);
    mHeadingLabel->setProperty("ctrlId", int(eHeading));
    mHeadingLabel->setWordWrap(true);
    mHeadingLabel->setVisible(!mHeading.empty());

    mSampleLabel = new QLabel(Text(kSampleLabelText), this);
    mSampleLabel->setProperty("ctrlId", int(eSampleLabel));
    mSampleDateLabel = new QLabel(QString::fromStdString(mSampleDate), this);
    mSampleDateLabel->setProperty("ctrlId", int(eSampleDate));
    mSampleDateLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    mSampleDateLabel->setWordWrap(true);

    if (mFormat.empty())
        mFormat = TsTimeUtl::GetUserLocaleDate(true, TsTimeUtl::eUserLocale) + " " +
                  TsTimeUtl::GetUserLocaleTime(TsTimeUtl::eUserLocale);
    mFormatBox = new QComboBox(this);
    mFormatBox->setProperty("ctrlId", int(eFormatBox));
    mFormatBox->setEditable(true);
    mFormatBox->setInsertPolicy(QComboBox::NoInsert);
    mFormatBox->setCompleter(nullptr); // what the user types stands as typed
    std::unique_ptr<RegistrySection> defaults = OpenDefaults(false);
    for (const std::string& row : DateFormatHistory::BoxRows(mFormat, DateFormatHistory::Load(defaults.get())))
        mFormatBox->addItem(QString::fromStdString(row));
    mFormatBox->setCurrentIndex(0);

    if (mSampleDate.empty())
        mSampleLabel->clear();

    // The sample area is as tall as the explanation that a caller may put there.
    std::string measure = LanguageString::Get(kMeasureText);
    const int sampleWidth = std::max(mSampleDateLabel->sizeHint().width(), 320);
    LimitLineLength::ByPixels(measure, mSampleDateLabel->fontMetrics(), sampleWidth);
    mSampleDateLabel->setMinimumSize(sampleWidth,
                                     LimitLineLength::GetBoundsRect(mSampleDateLabel->fontMetrics(), measure).height());

    mDetailsButton = new QPushButton(Text(kShowDetailsText), this);
    mDetailsButton->setProperty("ctrlId", int(eDetailsButton));
    mDetailsButton->setAutoDefault(false);
    mDetailsText = new QPlainTextEdit(this);
    mDetailsText->setProperty("ctrlId", int(eDetailsText));
    mDetailsText->setReadOnly(true);
    QString details = QString::fromStdString(GetFormatDetails());
    details.chop(1);
    mDetailsText->setPlainText(details);
    mDetailsText->setMinimumHeight(mDetailsText->fontMetrics().lineSpacing() * 17);
    mDetailsText->hide();

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    mOkButton = buttons->button(QDialogButtonBox::Ok);
    mOkButton->setProperty("ctrlId", int(IDOK));
    buttons->button(QDialogButtonBox::Cancel)->setProperty("ctrlId", int(IDCANCEL));

    auto* form = new QFormLayout;
    form->addRow(mSampleLabel, mSampleDateLabel);
    form->addRow(Text(kFormatLabelText), mFormatBox);
    auto* row = new QHBoxLayout;
    row->addWidget(mDetailsButton);
    row->addStretch();
    row->addWidget(buttons);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(mHeadingLabel);
    layout->addLayout(form);
    layout->addLayout(row);
    layout->addWidget(mDetailsText, 1);

    connect(mDetailsButton, &QPushButton::clicked, this, [this] { DetailsButton(); });
    connect(buttons, &QDialogButtonBox::accepted, this, [this] { OnBnClickedOk(); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    OnUpdateCommand(IDOK, [this](CCmdUI* cmdUI) { OnUpdateOkButton(cmdUI); });
    connect(mFormatBox, &QComboBox::editTextChanged, this, [this] { OnKickIdle(); });
    OnKickIdle();
    adjustSize();
}

void SpecifyDateFormat::SetNoDate()
{
    mSampleDate.clear();
    mSampleDateLabel->clear();
    mSampleLabel->clear();
}

void SpecifyDateFormat::DetailsButton()
{
    mDetailsShown = !mDetailsShown;
    mDetailsButton->setText(Text(mDetailsShown ? kHideDetailsText : kShowDetailsText));
    mDetailsText->setVisible(mDetailsShown);
    const int userWidth = width();
    layout()->activate();
    setMinimumHeight(layout()->minimumSize().height());
    resize(userWidth, mDetailsShown ? sizeHint().height() : layout()->minimumSize().height());
}

void SpecifyDateFormat::OnUpdateOkButton(CCmdUI* cmdUI)
{
    cmdUI->Enable(!mFormatBox->currentText().isEmpty());
}

void SpecifyDateFormat::OnBnClickedOk()
{
    mFormat = mFormatBox->currentText().toStdString();
    if (mFormat.empty())
        return;
    std::unique_ptr<RegistrySection> defaults = OpenDefaults(true);
    DateFormatHistory::Remember(defaults.get(), mFormat);
    accept();
}

bool TsTimeUtl::GetUserFormatString(const std::string& heading, const std::string& sampleDate,
                                    const std::string& format, std::string& result)
{
    std::string current = format;
    for (;;) {
        SpecifyDateFormat dialog(heading, sampleDate, current);
        if (dialog.exec() != QDialog::Accepted)
            return false;
        result = dialog.GetDateFormat();
        if (ValidateFormatString(result))
            return true;
        // Back to the dialog with what the user wrote.
        current = result;
    }
}
