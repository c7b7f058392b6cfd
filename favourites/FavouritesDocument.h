#pragma once
/// \class FavouritesDocument
/// A favourites tree held in memory, for programs without windows: tools that
/// read, convert or check favourites files, and a manager that loads and saves
/// collections without showing them. It keeps what a tree control keeps of a
/// row (text, node, bold, expanded, pictures) and follows its rules: a row
/// without children cannot be expanded.

#include <KORVAutlwin/favourites/FavouritesTreeRows.h>

#include <memory>

class FavouritesDocument : public FavouritesTreeRows
{
public:
    FavouritesDocument();
    /// Frees every row with its data.
    ~FavouritesDocument() override;

    FavouriteRow* GetRootItem() const override;
    FavouriteRow* GetNextItem(FavouriteRow* row) const override;
    FavouriteRow* GetParentItem(FavouriteRow* row) const override;
    FavouriteRow* GetChildItem(FavouriteRow* row) const override;
    FavouriteRow* GetNextSiblingItem(FavouriteRow* row) const override;
    std::string GetItemText(FavouriteRow* row) const override;
    void SetItemText(FavouriteRow* row, const std::string& text) override;
    FavouriteTreeNode* GetItemData(FavouriteRow* row) const override;
    void SetItemData(FavouriteRow* row, FavouriteTreeNode* node) override;
    FavouriteRow* InsertItem(const std::string& text, FavouriteRow* parent, FavouriteRow* after) override;
    void DeleteItem(FavouriteRow* row) override;
    int GetIndentLevel(FavouriteRow* row) const override;
    int GetItemStyle(FavouriteRow* row) const override;
    void SetItemStyle(FavouriteRow* row, int style) override;
    void SetItemImages(FavouriteRow* row, const QImage& normal, const QImage& selected) override;
    std::vector<unsigned int> GetToolbarIDs() const override;

    /// The tool bar resources whose pictures commands take.
    void SetToolBarIDs(std::vector<unsigned int> ids) { toolbarIds = std::move(ids); }
    /// The pictures last set on `row`, normal and selected.
    const QImage& GetItemImage(FavouriteRow* row, bool selected) const;
    /// How many rows there are.
    int GetCount() const { return count; }

private:
    struct Row;
    static Row* AsRow(FavouriteRow* row);

    std::unique_ptr<Row> root;
    std::vector<unsigned int> toolbarIds;
    int count = 0;
};
