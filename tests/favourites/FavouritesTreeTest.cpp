#include "../controls/ControlsTestSupport.h"

#include <KORVAutlwin/favourites/FavouriteApplication.h>
#include <KORVAutlwin/favourites/FavouriteCommandItem.h>
#include <KORVAutlwin/favourites/FavouriteFileItem.h>
#include <KORVAutlwin/favourites/FavouriteFolderItem.h>
#include <KORVAutlwin/favourites/FavouritesManager.h>
#include <KORVAutlwin/favourites/FavouritesTree.h>
#include <KORVAutlwin/favourites/FavouritesTreeRows.h>
#include <KORVAutlwin/favourites/FavouritesUtilities.h>
#include <KORVAutlwin/favourites/SeparatorItem.h>
#include <KORVAutlwin/toolkit/DisplayColor.h>

#include <KORVAutl/LanguageString.h>
#include <KORVAutl/TsString.h>

#include <fstream>

namespace {

class Manager : public FavouritesManager
{
public:
    void OnFavouritesChanged(int collection) override { changed.push_back(collection); }
    void Open(std::vector<FavouriteItem*>* items) override
    {
        for (FavouriteItem* item : *items)
            opened.push_back(item->GetName()), delete item;
    }
    std::vector<int> changed;
    std::vector<std::string> opened;
};

class FavouritesTreeInput : public korva::test::ControlsFixture
{
protected:
    void SetUp() override
    {
        ControlsFixture::SetUp();
        saved = FavouriteApplication::Get().messageBox;
        FavouriteApplication::Get().messageBox = [this](const std::string& text, unsigned int) { messages.push_back(text); };
        tree = FavouritesUtilities::CreateFavouritesTree(nullptr, &manager, 16258);
    }
    void TearDown() override
    {
        FavouriteApplication::Get().messageBox = saved;
        ControlsFixture::TearDown();
    }
    HTREEITEM Add(FavouriteItem* item, HTREEITEM parent = nullptr, int collection = 1)
    {
        FavouritesTreeRows& rows = tree->GetRows();
        FavouriteRow* row = rows.InsertItem(item->GetName(), FavouritesTree::Row(parent), nullptr);
        rows.SetItemData(row, new FavouriteTreeNode{item, collection});
        return row;
    }
    /// A: a1, A2 (a21), expanded; B (b1) closed; E empty; the file "top".
    void MakeTree()
    {
        HTREEITEM a = Add(new FavouriteFolderItem("A", nullptr));
        Add(new FavouriteFileItem("a1", "/x/a1"), a);
        Add(new FavouriteFileItem("a21", "/x/a21"), Add(new FavouriteFolderItem("A2", nullptr), a));
        Add(new FavouriteFileItem("b1", "/x/b1"), Add(new FavouriteFolderItem("B", nullptr)));
        Add(new FavouriteFolderItem("E", "Drop here"));
        Add(new FavouriteCommandItem("top", 34950));
        tree->SetItemStyle(a, FavouritesTreeRows::kStyleExpanded);
        tree->SetItemStyle(tree->GetChildItem(tree->GetNextSiblingItem(tree->GetChildItem(a))), 0);
        tree->Expand(tree->GetNextSiblingItem(tree->GetChildItem(a)), TVE_EXPAND);
        Show(tree);
    }
    HTREEITEM Item(const char* text) const
    {
        for (HTREEITEM item = tree->GetRootItem(); item; item = tree->GetNextItem(item))
            if (tree->GetItemText(item) == text)
                return item;
        return nullptr;
    }
    QPoint Label(HTREEITEM item) const
    {
        const QRect rect = tree->visualItemRect(TsTreeCtrl::Q(item));
        QPoint point(rect.left() + 2, rect.center().y());
        unsigned int flags = 0;
        while (tree->HitTest(point, &flags) && flags != TVHT_ONITEMLABEL && point.x() < rect.right())
            point.rx() += 2;
        return point;
    }
    std::string Text() const
    {
        std::string text;
        for (HTREEITEM item = tree->GetRootItem(); item; item = tree->GetNextItem(item))
            text += std::string(tree->GetIndentLevel(item), '.') + tree->GetItemText(item) + " ";
        return text;
    }
    void Drag(HTREEITEM from, HTREEITEM to, Qt::KeyboardModifiers mods)
    {
        QWidget* port = tree->viewport();
        const QPoint start = Label(from), end = Label(to);
        QTest::mousePress(port, Qt::LeftButton, mods, start);
        for (QPoint at : {start + QPoint(0, 12), end}) {
            QMouseEvent move(QEvent::MouseMove, at, port->mapToGlobal(at), Qt::NoButton, Qt::LeftButton, mods);
            QApplication::sendEvent(port, &move);
        }
        QTest::mouseRelease(port, Qt::LeftButton, mods, end);
    }
    /// Selects exactly `rows`, with Ctrl clicks.
    void Pick(const std::vector<const char*>& rows)
    {
        tree->SelectItem(nullptr);
        tree->ClearSelection();
        for (const char* row : rows)
            QTest::mouseClick(tree->viewport(), Qt::LeftButton, Qt::ControlModifier, Label(Item(row)));
    }
    void DropFromOutside(QMimeData* data)
    {
        // What a file manager's drag delivers: enter, move, drop.
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, data, Qt::LeftButton, {});
        QApplication::sendEvent(tree->viewport(), &enter);
        QDragMoveEvent move(QPoint(5, 5), Qt::CopyAction, data, Qt::LeftButton, {});
        QApplication::sendEvent(tree->viewport(), &move);
        QDropEvent drop(QPointF(5, 5), Qt::CopyAction, data, Qt::LeftButton, {});
        QApplication::sendEvent(tree->viewport(), &drop);
        EXPECT_TRUE(enter.isAccepted() && drop.isAccepted());
        delete data;
    }

    Manager manager;
    FavouritesTree* tree = nullptr;
    std::vector<std::string> messages;
    std::function<void(const std::string&, unsigned int)> saved;
};

} // namespace

TEST_F(FavouritesTreeInput, MouseDragsFollowTheDropRules)
{
    const std::string start = "A .a1 .A2 ..a21 B .b1 E top ";
    struct Case
    {
        const char* from;
        const char* to;
        Qt::KeyboardModifiers mods;
        std::string after;
    } cases[] = {
        {"a1", "A", {}, start},                                    // onto its own parent
        {"A", "a21", {}, start},                                   // into its own subtree
        {"top", "E", {}, "A .a1 .A2 ..a21 B .b1 E .top "},         // into an empty folder
        {"top", "B", {}, "A .a1 .A2 ..a21 B .b1 top E "},          // behind a closed folder
        {"top", "A2", {}, "A .a1 .A2 ..a21 ..top B .b1 E "},       // into an expanded one
        {"a1", "top", Qt::ControlModifier, start + "a1 "},          // Ctrl copies
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.from) + " onto " + c.to);
        tree->DeleteTree();
        MakeTree();
        Drag(Item(c.from), Item(c.to), c.mods);
        EXPECT_FALSE(tree->IsDragging());
        EXPECT_EQ(Text(), c.after);
        if (c.after != start) {
            EXPECT_EQ(tree->GetItemText(tree->GetSelectedItem()), c.from) << "the moved row is current";
        }
    }
    // The copy holds an item of its own: freeing the source leaves it whole.
    tree->DeleteItem(Item("a1"));
    EXPECT_EQ(tree->GetFavouriteItem(Item("a1"))->GetName(), "a1");
}

TEST_F(FavouritesTreeInput, DropsFromOutsideAddFilesAndCommandsOnce)
{
    MakeTree();
    auto files = [](const std::vector<std::string>& paths) {
        auto* data = new QMimeData;
        QList<QUrl> urls;
        for (const std::string& path : paths)
            urls << QUrl::fromLocalFile(QString::fromStdString(path));
        data->setUrls(urls);
        return data;
    };
    const std::string dropped = mDir.File("dropped.txt");
    std::ofstream(dropped) << "y";
    DropFromOutside(files({mDir.File("registry"), dropped, mDir.File(".")}));
    EXPECT_EQ(messages, std::vector<std::string>{"Folders cannot be dropped as a favourite."}) << "once per drop";
    HTREEITEM first = Item("dropped.txt");
    ASSERT_TRUE(first);
    tree->SelectItem(Item("top"));
    DropFromOutside(files({dropped}));
    EXPECT_EQ(tree->GetSelectedItem(), first) << "the earlier row is selected";
    EXPECT_EQ(Text(), "A .a1 .A2 ..a21 B .b1 E top dropped.txt ") << "once, in the manager's collection -1";
    // A single click on the label of a row that can open opens it.
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, Label(first));
    QApplication::processEvents();
    EXPECT_EQ(manager.opened, std::vector<std::string>{"dropped.txt"});

    auto* command = new QMimeData;
    command->setData(FavouritesTree::kMimeType, "CommandItem\n34951\nNew pane");
    DropFromOutside(command);
    auto* item = dynamic_cast<FavouriteCommandItem*>(tree->GetFavouriteItem(Item("New pane")));
    ASSERT_TRUE(item);
    EXPECT_EQ(item->GetCommandID(), 34951);
}

TEST_F(FavouritesTreeInput, KeysRenameAndDelete)
{
    struct Case
    {
        QString typed;
        std::string name;
    } cases[] = {{"  Reports  ", "Reports"}, {"   ", "B"}, {QString(200, 'x'), std::string(127, 'x')}};
    MakeTree();
    for (const Case& c : cases) {
        Pick({"B"});
        QTest::keyClick(tree, Qt::Key_F2);
        auto* edit = qobject_cast<QLineEdit*>(QApplication::focusWidget());
        ASSERT_TRUE(edit);
        edit->selectAll();
        QTest::keyClicks(edit, c.typed);
        QTest::keyClick(edit, Qt::Key_Return);
        QApplication::processEvents(); // the edit commits after its own handling of the key
        EXPECT_EQ(tree->GetItemText(tree->GetFirstSelectedItem()), c.name);
        EXPECT_EQ(tree->GetFavouriteItem(tree->GetFirstSelectedItem())->GetName(), c.name);
        tree->SetItemText(tree->GetFirstSelectedItem(), "B");
        tree->GetFavouriteItem(tree->GetFirstSelectedItem())->SetName("B");
    }
    // A text row cannot go: the delete stops there with its message, and B goes.
    // The idle update has removed the files that do not exist, b1 among them.
    tree->UpdateAllItems();
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, Qt::ControlModifier, Label(Item("Drop here")));
    manager.changed.clear();
    korva::test::WhenModal([](QWidget* box) { korva::test::Press(box, Qt::Key_Return); });
    QTest::keyClick(tree, Qt::Key_Delete);
    EXPECT_EQ(Text(), "A .A2 E .Drop here top ");
    EXPECT_EQ(messages, std::vector<std::string>{TsString::Format(16170, "Drop here")});
    EXPECT_EQ(manager.changed, std::vector<int>{1});
}

TEST_F(FavouritesTreeInput, NewFoldersAreNumberedAndNamedAtOnce)
{
    MakeTree();
    std::vector<std::string> names;
    for (int i = 0; i < 3; ++i) {
        Pick({});
        tree->ExecuteCommand(FavouritesTree::eNewFolder);
        ASSERT_TRUE(tree->IsLabelEditing()) << "the name is edited at once";
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QApplication::processEvents();
        names.push_back(tree->GetItemText(tree->GetFirstSelectedItem()));
    }
    EXPECT_EQ(names, (std::vector<std::string>{LanguageString::Get(16136), TsString::Format(16137, 2),
                                               TsString::Format(16137, 3)}));
}

TEST_F(FavouritesTreeInput, FileWrittenByTheTreeReadsBackTheSame)
{
    const std::string older = mDir.File("older.xml");
    std::ofstream(older) << R"(<?xml version="1.0"?><root><Favourites>
      <FavouriteItem><Name>F</Name><Type>FavouritesFolder</Type><_IndentLevel>0</_IndentLevel><_Style>2</_Style></FavouriteItem>
      <FavouriteItem><Name>G</Name><Type>FavouritesFolder</Type><_IndentLevel>1</_IndentLevel><Bold>1</Bold><Expanded>1</Expanded></FavouriteItem>
      <FavouriteItem><Name>c</Name><Type>CommandItem</Type><CommandID>34950</CommandID><_IndentLevel>2</_IndentLevel></FavouriteItem>
      <FavouriteItem><Name>H</Name><Type>FavouritesFolder</Type><EmptyFolderText>none</EmptyFolderText><_IndentLevel>0</_IndentLevel><_Style>2</_Style></FavouriteItem>
      </Favourites></root>)";
    Add(new FavouriteCommandItem("other", 34950), nullptr, 2);
    Show(tree);
    manager.LoadFavourites(older, 1);
    EXPECT_EQ(Text(), "other  F .G ..c H ") << "one separator keeps the collections apart";
    EXPECT_TRUE(dynamic_cast<SeparatorItem*>(tree->GetFavouriteItem(tree->GetNextSiblingItem(tree->GetRootItem()))));
    EXPECT_EQ(tree->GetItemStyle(Item("F")), FavouritesTreeRows::kStyleExpanded);
    EXPECT_EQ(tree->GetItemStyle(Item("G")), FavouritesTreeRows::kStyleBold | FavouritesTreeRows::kStyleExpanded);
    EXPECT_EQ(tree->GetItemStyle(Item("H")), 0) << "an empty folder cannot be expanded";

    const std::string first = mDir.File("first.xml"), second = mDir.File("second.xml");
    ASSERT_TRUE(manager.SaveFavourites(first, 1));
    delete tree;
    tree = FavouritesUtilities::CreateFavouritesTree(nullptr, &manager, 16258);
    Show(tree);
    manager.LoadFavourites(first, 1);
    EXPECT_EQ(Text(), "F .G ..c H ") << "the separator is never saved";
    tree->UpdateAllItems(); // the idle update opens H on its text row: no change to the file
    ASSERT_TRUE(manager.SaveFavourites(second, 1));
    auto read = [](const std::string& path) { return std::string(std::istreambuf_iterator<char>(std::ifstream(path).rdbuf()), {}); };
    EXPECT_EQ(read(first), read(second));
}

TEST_F(FavouritesTreeInput, SeparatorsAreEtchedAndTipsCut)
{
    Add(new FavouriteFileItem("long", std::string(1500, 'p').c_str()));
    HTREEITEM separator = Add(new SeparatorItem);
    Show(tree);
    std::string tip;
    ASSERT_TRUE(tree->OnToolTipNotify(Label(tree->GetRootItem()), tip));
    EXPECT_EQ(tip, std::string(1024, 'p'));
    EXPECT_FALSE(tree->IsDropSource(separator) && tree->GetFavouriteItem(separator)->IsDraggable());

    const QImage shot = tree->viewport()->grab().toImage();
    const QRect row = tree->visualItemRect(TsTreeCtrl::Q(separator));
    const int x = row.center().x(), middle = row.center().y();
    EXPECT_EQ(shot.pixelColor(x, middle - 1), korva::ToQColor(korva::GetSysColor(COLOR_BTNSHADOW)));
    EXPECT_EQ(shot.pixelColor(x, middle + 1), korva::ToQColor(korva::GetSysColor(COLOR_BTNHIGHLIGHT)));
}

TEST_F(FavouritesTreeInput, MoveCommandsKeepTheBranchTogether)
{
    const struct
    {
        const char* row;
        unsigned int command;
        std::string after;
    } cases[] = {
        {"a1", FavouritesTree::eMoveUp, "A .a1 .A2 ..a21 B .b1 E top "},
        {"A2", FavouritesTree::eMoveUp, "A .A2 ..a21 .a1 B .b1 E top "},
        {"top", FavouritesTree::eMoveUp, "A .a1 .A2 ..a21 B .b1 top E "},
        {"a1", FavouritesTree::eMoveDown, "A .A2 ..a21 .a1 B .b1 E top "},
        {"A2", FavouritesTree::eMoveDown, "A .a1 A2 .a21 B .b1 E top "},
        {"a21", FavouritesTree::eMoveLeft, "A .a1 .A2 .a21 B .b1 E top "},
        {"top", FavouritesTree::eMoveRight, "A .a1 .A2 ..a21 B .b1 E .top "},
        {"B", FavouritesTree::eMoveRight, "A .a1 .A2 ..a21 .B ..b1 E top "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.row) + " " + std::to_string(c.command));
        tree->DeleteTree();
        MakeTree();
        Pick({c.row});
        tree->ExecuteCommand(c.command);
        EXPECT_EQ(Text(), c.after);
        EXPECT_EQ(tree->GetItemText(tree->GetFirstSelectedItem()), c.row);
        if (tree->ItemHasChildren(Item("A2"))) {
            EXPECT_EQ(tree->GetItemStyle(Item("A2")), FavouritesTreeRows::kStyleExpanded) << "a moved branch stays open";
        }
    }
}

TEST_F(FavouritesTreeInput, ContextMenuFollowsTheSelection)
{
    const struct
    {
        std::vector<const char*> rows;
        unsigned int openText; // 0: the menu's own
        bool folderAsItem;
    } cases[] = {{{"top"}, 0, false}, {{"a1", "top"}, 16119, false}, {{"A2"}, 16118, true}, {{"A2", "B"}, 16118, false}};
    MakeTree();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.rows.size());
        Pick(c.rows);
        QString open;
        bool asItem = false;
        korva::test::WhenModal([&](QWidget* popup) {
            for (QAction* action : popup->actions()) {
                if (action->property("commandId").toUInt() == FavouritesTree::eOpen)
                    open = action->text();
                asItem |= action->property("commandId").toUInt() == FavouritesTree::eFolderAsItem;
            }
            popup->close();
        });
        // The right press as the window system reports it; the offscreen platform makes no menu event of it.
        const QPoint at = Label(Item(c.rows[0]));
        QTest::mousePress(tree->viewport(), Qt::RightButton, {}, at);
        QContextMenuEvent menu(QContextMenuEvent::Mouse, at, tree->viewport()->mapToGlobal(at));
        QApplication::sendEvent(tree->viewport(), &menu);
        QTest::mouseRelease(tree->viewport(), Qt::RightButton, {}, at);
        if (c.openText) {
            EXPECT_EQ(open.toStdString(), LanguageString::Get(c.openText));
        } else {
            EXPECT_TRUE(open.startsWith("&Open")) << open.toStdString();
        }
        EXPECT_EQ(asItem, c.folderAsItem);
    }
}

namespace {

// An application's kind of favourite that belongs to its collection.
class LocalItem : public FavouriteItem
{
public:
    explicit LocalItem(const char* name) { SetName(name); }
    FavouriteItem* Copy() const override { return new LocalItem(*this); }
    std::string GetType() const override { return "LocalItem"; }
};

} // namespace

TEST_F(FavouritesTreeInput, RowsThatAreNotGlobalStayInTheirCollection)
{
    const struct
    {
        const char* from;
        const char* to;
        std::string after;
    } cases[] = {
        {"local", "Other", "A .local .file Mine Other "},  // into another collection
        {"A", "Other", "A .local .file Mine Other "},      // a folder holding one
        {"local", "Mine", "A .file Mine local Other "},    // within its own
        {"file", "Other", "A .local Mine Other .file "},   // a global row goes anywhere
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.from) + " onto " + c.to);
        tree->DeleteTree();
        HTREEITEM a = Add(new FavouriteFolderItem("A", nullptr));
        Add(new LocalItem("local"), a);
        Add(new FavouriteFileItem("file", "/x/file"), a);
        Add(new LocalItem("Mine"));
        Add(new FavouriteFolderItem("Other", nullptr), nullptr, 2);
        tree->Expand(a, TVE_EXPAND);
        Show(tree);
        Drag(Item(c.from), Item(c.to), {});
        EXPECT_EQ(Text(), c.after);
    }
}
