#include "services/menu_layout.h"
#include "services/symbols.h"

#include <algorithm>

static constexpr int BAR_HEIGHT = 24;  // pixels
static constexpr int BAR_TEXT_Y = 3;   // from the bar's top
static constexpr int BAR_FIRST_X = 4;
static constexpr int BAR_GAP = 10;     // left and right of a menu's name
static constexpr int ROW_HEIGHT = 22, DASH_HEIGHT = 9;
static constexpr int ROW_TEXT_Y = 3;
static constexpr int CHECK_ROOM = 26;  // column of the check marks
static constexpr int ARROW_ROOM = 24;  // column of the submenu arrows
static constexpr int PANEL_EDGE = 2;   // outline and bevel
static constexpr int TEXT_HEIGHT = 16;

int ws_menu_height()
{
    return BAR_HEIGHT;
}

int menu_font()
{
    int font;
    return ws_load_font("sans.16", &font) == 0 ? font : -1;
}

static int width_of(const std::string &text, int length)
{
    int width = 0;
    ws_text_width(menu_font(), text.c_str(), length, &width);
    return width;
}

static int width_of(const std::string &text)
{
    return width_of(text, int(text.size()));
}

// --- where things lie --------------------------------------------------------------------------------------------

ws_rect menu_bar_item_rect(int row)
{
    int x = BAR_FIRST_X;
    for (int r = menu_first_child(MENU_NO_ROW); r != row; r = menu_next_sibling(r))
        x += width_of(menu_row(r).label) + 2 * BAR_GAP;
    return { x, -BAR_HEIGHT, x + width_of(menu_row(row).label) + 2 * BAR_GAP - 1, -2 };
}

int menu_bar_row_at(int x, int y)
{
    for (int row = menu_first_child(MENU_NO_ROW); row != MENU_NO_ROW; row = menu_next_sibling(row))
        if (rect_has(menu_bar_item_rect(row), x, y))
            return row;
    return MENU_NO_ROW;
}

static int row_height(int row)
{
    return menu_row(row).dash ? DASH_HEIGHT : ROW_HEIGHT;
}

static int content_height(int parent)
{
    int height = 0;
    for (int row = menu_first_child(parent); row != MENU_NO_ROW; row = menu_next_sibling(row))
        height += row_height(row);
    return height;
}

static int content_width(int parent)
{
    int width = 0;
    for (int row = menu_first_child(parent); row != MENU_NO_ROW; row = menu_next_sibling(row))
        width = std::max(width, width_of(menu_row(row).label));
    return CHECK_ROOM + width + ARROW_ROOM;
}

menu_panel menu_panel_of(int parent, const ws_rect &parent_rect, bool beside)
{
    const int screen_width = ws_state.info.width, screen_height = ws_state.info.height;
    const int width = std::min(content_width(parent) + 2 * PANEL_EDGE, screen_width);
    const int height = std::min(content_height(parent) + 2 * PANEL_EDGE, screen_height);
    int x = beside ? parent_rect.x1 + 1 : parent_rect.x0;
    const int y = beside ? parent_rect.y0 - PANEL_EDGE : 0;
    if (beside && x + width > screen_width)
        x = parent_rect.x0 - width;
    x = std::clamp(x, 0, screen_width - width);
    const int top = std::clamp(y, 0, screen_height - height);
    return { parent, { x, top, x + width - 1, top + height - 1 }, MENU_NO_ROW, 0 };
}

ws_rect menu_row_rect(const menu_panel &panel, int row)
{
    int y = panel.rect.y0 + PANEL_EDGE - panel.scroll;
    for (int r = menu_first_child(panel.parent); r != row; r = menu_next_sibling(r))
        y += row_height(r);
    return { panel.rect.x0 + PANEL_EDGE, y, panel.rect.x1 - PANEL_EDGE, y + row_height(row) - 1 };
}

int menu_row_at(const menu_panel &panel, int x, int y)
{
    if (!rect_has(panel.rect, x, y))
        return MENU_NO_ROW;
    for (int row = menu_first_child(panel.parent); row != MENU_NO_ROW; row = menu_next_sibling(row))
        if (rect_has(menu_row_rect(panel, row), x, y))
            return row;
    return MENU_NO_ROW;
}

void menu_scroll_by(menu_panel *panel, int pixels)
{
    const int room = panel->rect.y1 - panel->rect.y0 + 1 - 2 * PANEL_EDGE;
    panel->scroll = std::clamp(panel->scroll + pixels, 0, std::max(content_height(panel->parent) - room, 0));
}

void menu_scroll_to(menu_panel *panel, int row)
{
    const ws_rect r = menu_row_rect(*panel, row);
    const int above = panel->rect.y0 + PANEL_EDGE - r.y0, below = r.y1 - (panel->rect.y1 - PANEL_EDGE);
    if (above > 0)
        menu_scroll_by(panel, -above);
    else if (below > 0)
        menu_scroll_by(panel, below);
}

// --- painting ----------------------------------------------------------------------------------------------------

static void paint_label(const menu_item &item, int x, int y, int x_end, uint32_t colour)
{
    paint_text(menu_font(), x, y, x_end, item.label.c_str(), colour);
    if (item.mnemonic_at < 0 || item.mnemonic_at >= int(item.label.size()))
        return;
    const int left = x + width_of(item.label, item.mnemonic_at), right = x + width_of(item.label, item.mnemonic_at + 1) - 2;
    paint_fill({ left, y + TEXT_HEIGHT - 2, std::min(right, x_end), y + TEXT_HEIGHT - 2 }, colour);
}

void menu_paint_bar(int open_row)
{
    paint_fill({ 0, -BAR_HEIGHT, ws_state.info.width - 1, -2 }, UI_FACE);
    paint_fill({ 0, -1, ws_state.info.width - 1, -1 }, UI_SHADE);
    for (int row = menu_first_child(MENU_NO_ROW); row != MENU_NO_ROW; row = menu_next_sibling(row)) {
        const ws_rect r = menu_bar_item_rect(row);
        const menu_item &item = menu_row(row);
        if (row == open_row)
            paint_fill(r, UI_ACCENT);
        paint_label(item, r.x0 + BAR_GAP, r.y0 + BAR_TEXT_Y, r.x1,
                    !item.enabled ? UI_TEXT_GREY : row == open_row ? UI_ACCENT_TEXT : UI_TEXT);
    }
}

static void paint_row_symbol(int symbol, int x, int room, const ws_rect &row, uint32_t colour)
{
    int width, height;
    symbol_size(symbol, &width, &height);
    paint_symbol(symbol, x + (room - width) / 2, (row.y0 + row.y1 + 1 - height) / 2, colour);
}

static void paint_row(const menu_panel &panel, int row)
{
    const ws_rect r = menu_row_rect(panel, row);
    const menu_item &item = menu_row(row);
    // A row that sticks out of a scrolled menu is left out whole.
    if (r.y0 < panel.rect.y0 + PANEL_EDGE || r.y1 > panel.rect.y1 - PANEL_EDGE)
        return;
    if (item.dash) {
        const int y = (r.y0 + r.y1) / 2;
        paint_fill({ r.x0 + 2, y, r.x1 - 2, y }, UI_SHADE);
        paint_fill({ r.x0 + 2, y + 1, r.x1 - 2, y + 1 }, UI_LIGHT);
        return;
    }
    const bool chosen = row == panel.chosen && item.enabled;
    const uint32_t colour = !item.enabled ? UI_TEXT_GREY : chosen ? UI_ACCENT_TEXT : UI_TEXT;
    if (chosen)
        paint_fill(r, UI_ACCENT);
    if (item.checked)
        paint_row_symbol(SYM_CHECK, r.x0, CHECK_ROOM, r, colour);
    paint_label(item, r.x0 + CHECK_ROOM, r.y0 + ROW_TEXT_Y, r.x1, colour);
    if (menu_has_children(row))
        paint_row_symbol(SYM_SUBMENU, r.x1 - ARROW_ROOM, ARROW_ROOM, r, colour);
}

void menu_paint_panel(const menu_panel &panel)
{
    paint_fill(panel.rect, UI_FACE);
    paint_outline(panel.rect, UI_DARK);
    paint_bevel({ panel.rect.x0 + 1, panel.rect.y0 + 1, panel.rect.x1 - 1, panel.rect.y1 - 1 }, true);
    for (int row = menu_first_child(panel.parent); row != MENU_NO_ROW; row = menu_next_sibling(row))
        paint_row(panel, row);
}
