#include "filters/polygon_mask.h"

#include <set>

#include "filters/random_image.h"
#include "services/ws.h"

namespace {

struct vertex {
    int64_t row, col;
};
typedef std::vector<vertex> polygon;
typedef std::vector<std::array<int, 3>> triples;

int last_result;
std::string last_report;

int note(int, const char *text)
{
    last_report = text;
    return 1;
}

triples mask_of(polygon shape, int32_t first = INT32_MIN, int32_t last = INT32_MAX)
{
    shape.push_back(shape[0]);
    std::vector<int32_t> flat;
    for (const vertex &v : shape) {
        flat.push_back(int32_t(v.row));
        flat.push_back(int32_t(v.col));
    }
    const int count = int(shape.size());
    std::vector<int32_t> mask(size_t(poly_mask_bytes(flat.data(), count, first, last)) / sizeof(int32_t), 12345);
    report_hook = note;
    last_result = poly_to_rast(flat.data(), count, mask.data(), first, last);
    report_hook = nullptr;
    triples list;
    if (last_result != 0)
        return list;
    for (size_t i = 0; mask.at(i) != -1 || (i > 0 && list.back()[0] < -1); i += 3)
        list.push_back({ mask.at(i), mask.at(i + 1), mask.at(i + 2) });
    return list;
}

// The pixels of the line between two points: the k-th pixel along the longer axis, counted from the lower row, lies on row
// j when round(j w / h) <= k < round((j + 1) w / h), w pixels and h rows in all; a steep line has pixel round(j dc / dr) on row j.
int64_t rounded(int64_t numerator, int64_t denominator)
{
    return (2 * numerator + denominator) / (2 * denominator);
}

typedef std::set<std::pair<int64_t, int64_t>> pixel_set;

void draw(vertex a, vertex b, pixel_set &on)
{
    if (b.row < a.row)
        std::swap(a, b);
    const int64_t dr = b.row - a.row, dc = std::abs(b.col - a.col), sign = b.col < a.col ? -1 : 1;
    for (int64_t j = 0; j <= dr; j++) {
        if (dc < dr) {
            on.insert({ a.row + j, a.col + sign * rounded(j * dc, dr) });
            continue;
        }
        for (int64_t k = rounded(j * (dc + 1), dr + 1); k < rounded((j + 1) * (dc + 1), dr + 1); k++)
            on.insert({ a.row + j, a.col + sign * k });
    }
}

pixel_set outline_of(const polygon &shape)
{
    pixel_set on;
    for (size_t i = 0; i < shape.size(); i++)
        draw(shape[i], shape[(i + 1) % shape.size()], on);
    return on;
}

// Even-odd: crossings of the row to the left of the pixel.
bool is_inside(const polygon &shape, int64_t row, int64_t col)
{
    bool inside = false;
    for (size_t i = 0; i < shape.size(); i++) {
        const vertex &a = shape[i], &b = shape[(i + 1) % shape.size()];
        if ((a.row > row) == (b.row > row))
            continue;
        const int64_t side = (col - a.col) * (b.row - a.row) - (row - a.row) * (b.col - a.col);
        if (b.row > a.row ? side > 0 : side < 0)
            inside = !inside;
    }
    return inside;
}

std::string text_of(const polygon &shape)
{
    std::string text;
    for (const vertex &v : shape)
        text += "(" + std::to_string(v.row) + "," + std::to_string(v.col) + ") ";
    return text;
}

// Every pixel that is not on the outline is in the mask exactly when it is inside; intervals end on the outline and rise.
void expect_polygon(const polygon &shape, int size)
{
    const triples mask = mask_of(shape);
    ASSERT_EQ(last_result, 0) << text_of(shape);
    const pixel_set on = outline_of(shape);
    std::set<std::pair<int64_t, int64_t>> masked;
    int row = INT32_MIN, end = 0;
    for (const auto &[y, first, last] : mask) {
        ASSERT_LT(first, last) << text_of(shape);
        ASSERT_TRUE(y > row || (y == row && first > end)) << text_of(shape);
        ASSERT_TRUE(on.count({ y, last })) << text_of(shape) << " row " << y << " ends at " << last;
        row = y;
        end = last;
        for (int x = first; x <= last; x++)
            masked.insert({ y, x });
    }
    for (int y = -1; y <= size; y++)
        for (int x = -1; x <= size; x++) {
            if (on.count({ y, x }))
                continue;
            ASSERT_EQ(masked.count({ y, x }), size_t(is_inside(shape, y, x))) << text_of(shape) << " at " << y << ", " << x;
        }
}

} // namespace

TEST(PolyToRast, ARectangleIsFilledBehindItsLeftEdgeToItsRightOne)
{
    // Row 2 and row 5 are the outline itself, one record each.
    EXPECT_EQ(mask_of({ { 2, 3 }, { 2, 9 }, { 5, 9 }, { 5, 3 } }), (triples{ { 3, 4, 9 }, { 4, 4, 9 } }));
}

TEST(PolyToRast, ATriangleFollowsTheLinesDrawnOnTheScreen)
{
    // (0,4) down to (4,8), to (4,0), and back: 45 degrees on both sides. Row 1 has the outline at 3 and 5, row 2 at 2 and 6, row 3 at 1 and 7.
    EXPECT_EQ(mask_of({ { 0, 4 }, { 4, 8 }, { 4, 0 } }), (triples{ { 1, 4, 5 }, { 2, 3, 6 }, { 3, 2, 7 } }));
}

TEST(PolyToRast, AFlatEdgeHasItsWholeRunOnEachRow)
{
    // From (0,0) to (1,9): 10 pixels on 2 rows, 0 to 4 and 5 to 9. Back by (3,0): on row 1 the left side is at 0, the right run at 5 to 9;
    // from (1,9) to (3,0) the line has 10 pixels on 3 rows: 9 to 7 (round 10/3 = 3), 6 to 3 (round 20/3 = 7), 2 to 0.
    // Row 1: left side 0 (0 to 0), right vertex 5 to 9 joined with 7 to 9. Row 2: left side 0, right run 3 to 6.
    EXPECT_EQ(mask_of({ { 0, 0 }, { 1, 9 }, { 3, 0 } }), (triples{ { 1, 1, 5 }, { 2, 1, 3 } }));
}

TEST(PolyToRast, ThePartsOfAConcaveShapeAreSeparate)
{
    // An upright U: columns 0 to 2 and 6 to 8 reach up to row 0, the bottom is from row 3 on.
    const triples mask = mask_of({ { 0, 0 }, { 0, 2 }, { 3, 2 }, { 3, 6 }, { 0, 6 }, { 0, 8 }, { 5, 8 }, { 5, 0 } });
    EXPECT_EQ(mask, (triples{ { 1, 1, 2 }, { 1, 7, 8 }, { 2, 1, 2 }, { 2, 7, 8 }, { 3, 1, 2 }, { 3, 7, 8 }, { 4, 1, 8 } }));
}

TEST(PolyToRast, AnOutlineThatTouchesARowStaysOnItsSide)
{
    // A notch from above whose tip lies on row 2 at column 5: the row is filled on both sides of the tip.
    // The notch has 6 pixels on 3 rows on each side: 2 and 3, 7 and 8 on row 1; 4 and 5 joined with 5 and 6 on row 2, from 4 on and 2 long.
    EXPECT_EQ(mask_of({ { 0, 0 }, { 2, 5 }, { 0, 10 }, { 4, 10 }, { 4, 0 } }),
              (triples{ { 1, 1, 2 }, { 1, 9, 10 }, { 2, 1, 4 }, { 2, 6, 10 }, { 3, 1, 10 } }));
    expect_polygon({ { 0, 0 }, { 2, 5 }, { 0, 10 }, { 4, 10 }, { 4, 0 } }, 12);
}

TEST(PolyToRast, ItDoesNotMatterAtWhichVertexAShapeBegins)
{
    // An S whose steps are horizontal edges that the outline crosses, begun at each vertex in turn and drawn both ways.
    const polygon shape = { { 0, 5 }, { 0, 12 }, { 5, 12 }, { 5, 9 }, { 10, 9 }, { 10, 0 }, { 5, 0 }, { 5, 5 } };
    for (size_t first = 0; first < shape.size(); first++) {
        polygon turned = shape;
        std::rotate(turned.begin(), turned.begin() + long(first), turned.end());
        expect_polygon(turned, 14);
        std::reverse(turned.begin(), turned.end());
        expect_polygon(turned, 14);
    }
}

TEST(PolyToRast, CollinearPointsFillNothing)
{
    EXPECT_EQ(mask_of({ { 4, 1 }, { 4, 9 }, { 4, 5 } }), triples());
    EXPECT_EQ(mask_of({ { 1, 4 }, { 9, 4 }, { 5, 4 } }), triples());
    EXPECT_EQ(mask_of({ { 3, 3 }, { 3, 3 }, { 3, 3 } }), triples());
    for (const auto &[y, first, last] : mask_of({ { 0, 0 }, { 9, 6 }, { 3, 2 } }))
        EXPECT_LE(last - first, 1) << y;
}

TEST(PolyToRast, AgreesWithPointsInPolygonsAndDrawnLines)
{
    std::mt19937 random(11);
    for (int trial = 0; trial < 1500; trial++) {
        const int size = 3 + int(random() % 30), corners = 3 + int(random() % 9);
        polygon shape;
        for (int i = 0; i < corners; i++)
            shape.push_back({ int64_t(random() % unsigned(size)), int64_t(random() % unsigned(size)) });
        expect_polygon(shape, size);
        if (HasFatalFailure())
            return;
    }
}

TEST(PolyToRast, AgreesOnShapesOfRightAngles)
{
    // Horizontal and vertical edges in turn, on a coarse grid, so that vertices and edges meet.
    std::mt19937 random(5);
    for (int trial = 0; trial < 700; trial++) {
        polygon shape;
        int64_t row = 0, col = 0;
        for (int i = 0; i < 6; i++) {
            row = int64_t(random() % 5) * 3;
            shape.push_back({ row, col });
            col = int64_t(random() % 5) * 3;
            shape.push_back({ row, col });
        }
        expect_polygon(shape, 16);
        if (HasFatalFailure())
            return;
    }
}

// Teeth between rows 0 and 10: each adds two edges that cross the rows between.
polygon comb(int edges)
{
    polygon shape;
    for (int i = 0; i < edges; i++)
        shape.push_back({ i & 1 ? 10 : 0, 4 * i });
    return shape;
}

TEST(PolyToRast, HasRoomFor101PartsOfTheOutlineOnARow)
{
    EXPECT_FALSE(mask_of(comb(100)).empty());
    EXPECT_EQ(last_result, 0);
    polygon touching = comb(100);              // the last vertex is on row 10; two more reach up to row 5 and back
    touching.push_back({ 5, 402 });
    touching.push_back({ 10, 404 });
    EXPECT_FALSE(mask_of(touching, 5, 5).empty());
    EXPECT_EQ(last_result, 0);                 // 100 crossings and one touch on row 5
    mask_of(touching, 6, 6);
    EXPECT_EQ(last_result, -1);                // 102 crossings below
    mask_of(comb(102));
    EXPECT_EQ(last_result, -1);
    EXPECT_EQ(last_report, "poly_to_rast(): Intersection interval buffer overflow\n");
    mask_of(comb(102), 0, 0);                  // 51 vertices are on row 0
    EXPECT_EQ(last_result, 0);
}

TEST(PolyToRast, WritesTheRowsThatAreAskedFor)
{
    EXPECT_EQ(mask_of({ { -5, 3 }, { -5, 9 }, { 5, 9 }, { 5, 3 } }, 0, 1), (triples{ { 0, 4, 9 }, { 1, 4, 9 } }));
    EXPECT_EQ(mask_of({ { -5, 3 }, { -5, 9 }, { -2, 9 }, { -2, 3 } }, 0, 9), triples());
    EXPECT_EQ(mask_of({ { 20, 3 }, { 20, 9 }, { 30, 9 }, { 30, 3 } }, 0, 9), triples());
}

TEST(PolyToRast, FarVerticesAreSafe)
{
    const int64_t far = INT32_MAX, deep = INT32_MIN;
    const triples mask = mask_of({ { deep, deep }, { deep, far }, { far, far }, { far, deep } }, 0, 2);
    EXPECT_EQ(mask, (triples{ { 0, INT32_MIN + 1, INT32_MAX }, { 1, INT32_MIN + 1, INT32_MAX }, { 2, INT32_MIN + 1, INT32_MAX } }));
    mask_of({ { deep, far }, { far, deep }, { 7, 3 }, { far, far } }, -10, 10);
    EXPECT_EQ(last_result, 0);
}
