#include <KORVAutlwin/workspace/TabbedWorkspaceLayout.h>

#include <KORVAutlwin/workspace/TabCtrlStyles.h>

TabbedWorkspaceLayout::EStripSide TabbedWorkspaceLayout::SideOfStyle(unsigned long style)
{
    if (style & TCS_VERTICAL)
        return (style & TCS_RIGHT) ? eRight : eLeft;
    return (style & TCS_BOTTOM) ? eBottom : eTop;
}

QRect TabbedWorkspaceLayout::ShrinkByOffset(const QRect& rect, int offset)
{
    QRect shrunk = rect;
    if (rect.width() > 2 * offset)
        shrunk.adjust(offset, 0, -offset, 0);
    else
        shrunk.setWidth(0);
    if (rect.height() > 2 * offset)
        shrunk.adjust(0, offset, 0, -offset);
    else
        shrunk.setHeight(0);
    return shrunk;
}

QRect TabbedWorkspaceLayout::CalcClientRect(const QRect& whole, int offset, int stripExtent, int border,
                                            EStripSide side)
{
    QRect client = ShrinkByOffset(whole, offset);
    switch (side) {
    case eTop:
        client.setTop(client.top() + stripExtent);
        break;
    case eBottom:
        client.setBottom(client.bottom() - stripExtent);
        break;
    case eLeft:
        client.setLeft(client.left() + stripExtent);
        break;
    case eRight:
        client.setRight(client.right() - stripExtent);
        break;
    }
    client.adjust(border, border, -border, -border);
    if (client.width() < 0 || client.height() < 0)
        return QRect(client.topLeft(), QSize(0, 0));
    return client;
}
