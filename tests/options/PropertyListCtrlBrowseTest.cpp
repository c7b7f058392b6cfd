// The path rows' edit and browse controls, and what the grid paints.
#include "PropertyGridTestSupport.h"

#include <KORVAutlwin/options/PropertyInPlaceEditAndBrowse.h>

using namespace korva::test;

namespace {

std::string PathOf(PropertyListCtrl* grid, int row)
{
    std::string path;
    PropertyItem* item = grid->GetPropertyItem(row);
    if (auto* folder = dynamic_cast<PropertyItemFolderPath*>(item))
        folder->GetData(path);
    else if (auto* file = dynamic_cast<PropertyItemFilePath*>(item))
        file->GetData(path);
    return path;
}

} // namespace

TEST_F(GridFixture, PathRowsTakeTypedTextAndTheBrowsersChoice)
{
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    ASSERT_TRUE(QDir(folder.path()).mkdir("spectra"));
    QFile report(folder.filePath("report.html"));
    ASSERT_TRUE(report.open(QIODevice::WriteOnly));
    report.close();
    struct Row
    {
        unsigned int id;
        const char* title;
        const char* accept;
        QString chosen;
    };
    const Row rows[] = {{eFolder, "Select Folder", nullptr, folder.filePath("spectra")},
                        {eFile, "Select File", "Select", folder.filePath("report.html")}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.title);
        // Typed text commits when the edit hands the focus back (Return).
        const QString typed = folder.filePath("typed");
        QLineEdit* edit = TypeInto(row.id, typed.toUtf8().constData());
        ASSERT_NE(edit, nullptr);
        QTest::keyClick(edit, Qt::Key_Return);
        EXPECT_EQ(PathOf(grid, RowOf(row.id)), typed.toStdString());

        auto* control = qobject_cast<PropertyInPlaceEditAndBrowse*>(grid->GetInPlaceControl());
        ASSERT_NE(control, nullptr);
        QString title, accept;
        WhenModal([&](QDialog* modal) {
            auto* dialog = qobject_cast<QFileDialog*>(modal);
            if (!dialog) {
                modal->reject();
                return;
            }
            title = dialog->windowTitle();
            accept = dialog->labelText(QFileDialog::Accept);
            // Typed as a user would: selectFile leaves a focused name field alone.
            auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
            if (name)
                name->setText(row.chosen);
            else
                dialog->selectFile(row.chosen);
            static_cast<QDialog*>(dialog)->accept();
        });
        manager.changes.clear();
        QTest::mouseClick(control->GetButton(), Qt::LeftButton);
        EXPECT_EQ(title, row.title);
        if (row.accept) {
            EXPECT_EQ(accept, row.accept);
        }
        EXPECT_EQ(PathOf(grid, RowOf(row.id)), row.chosen.toStdString());
        EXPECT_EQ(control->GetEdit()->text(), row.chosen);
        EXPECT_EQ(manager.changes.size(), 1u);

        // Reaching for the button takes what was typed; a cancelled browse keeps it.
        const QString retyped = folder.filePath("retyped");
        control->GetEdit()->selectAll();
        QTest::keyClicks(control->GetEdit(), retyped);
        WhenModal([](QDialog* dialog) { dialog->reject(); });
        QTest::mouseClick(control->GetButton(), Qt::LeftButton);
        EXPECT_EQ(PathOf(grid, RowOf(row.id)), retyped.toStdString());
        window->activateWindow(); // the offscreen platform gives it back to no one
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        ClickRow(0);
    }
}

TEST_F(GridFixture, ValuesPaintInTheirCellsAndTheSwatchStaysBesideItsControl)
{
    static_cast<PropertyItemColorPopup*>(grid->GetPropertyItem(RowOf(eColour)))->SetData(RGB(255, 0, 0));
    ClickRow(RowOf(eColour));
    ASSERT_NE(grid->GetInPlaceControl(), nullptr);
    QImage image(grid->size(), QImage::Format_RGB32);
    grid->render(&image);
    const QRect cell = grid->GetItemValueRect(RowOf(eColour));
    EXPECT_EQ(image.pixelColor(cell.left() + 15, cell.center().y()), QColor(255, 0, 0));
    // The caption of the selected row is highlighted; an unselected one is not.
    const QColor highlight = grid->palette().color(QPalette::Highlight);
    EXPECT_EQ(image.pixelColor(20, grid->GetItemRect(RowOf(eColour)).top() + 1), highlight);
    EXPECT_NE(image.pixelColor(20, grid->GetItemRect(RowOf(eName)).top() + 1), highlight);
    // The details area takes the bottom 64 pixels, in the face colour.
    const QRect details = grid->GetDetailsRect();
    EXPECT_EQ(details.height(), 64);
    EXPECT_EQ(details.bottom(), grid->height() - 1);
    EXPECT_EQ(image.pixelColor(details.center().x(), details.bottom() - 5), grid->palette().color(QPalette::Button));
}
