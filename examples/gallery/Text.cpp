#include "Drawing.h"
#include "Lettering.h"
#include "Scenes.h"

#include <gui/gl/gl.h>

#include <iterator>

namespace gallery
{

namespace
{

using gui::gl::Font;
using td::ColorID;

enum Face : std::size_t
{
    Title,
    Heading,
    Body,
    Mono,
    Size12,
    Size16,
    Size24,
    Size48
};

// The first article of the Universal Declaration of Human Rights.
struct Article
{
    const char* language;
    const char* text;
    td::BYTE alignment;
    ColorID color;
};

constexpr Article cArticles[] = {
    {"English",
     "All human beings are born free and equal in dignity and rights. They are endowed with reason and conscience and "
     "should act towards one another in a spirit of brotherhood.",
     Font::cLeft, ColorID::Gold},
    {"Ελληνικά",
     "Όλοι οι άνθρωποι γεννιούνται ελεύθεροι και ίσοι στην αξιοπρέπεια και τα δικαιώματα. Είναι προικισμένοι με λογική "
     "και "
     "συνείδηση, και οφείλουν να συμπεριφέρονται μεταξύ τους με πνεύμα αδελφοσύνης.",
     Font::cCentre, ColorID::LightSkyBlue},
    {"Русский",
     "Все люди рождаются свободными и равными в своём достоинстве и правах. Они наделены разумом и совестью и должны "
     "поступать в отношении друг друга в духе братства.",
     Font::cCentre, ColorID::LightSalmon},
    {"Tiếng Việt",
     "Tất cả mọi người sinh ra đều được tự do và bình đẳng về nhân phẩm và quyền lợi. Mọi con người đều được tạo hoá "
     "ban "
     "cho lý trí và lương tâm và cần phải đối xử với nhau trong tình anh em.",
     Font::cRight, ColorID::PaleGreen},
};

struct Sample
{
    Face face;
    const char* label;
    const char* text;
    float baseline; // in points
};

constexpr Sample cSamples[] = {
    {Size48, "48\tpx", "born free and equal in dignity", 454},
    {Size24, "24\tpx", "and rights. They are endowed with reason and conscience and", 499},
    {Size16, "16\tpx",
     "should act towards one another in a spirit of brotherhood. Everyone is entitled to all the rights and", 533},
    {Size12, "12\tpx",
     "freedoms set forth in this Declaration, without distinction of any kind, such as race, colour, sex, language, "
     "religion, opinion or origin.",
     561},
};

/// A page: headings in two fonts, paragraphs in four scripts and three alignments, and four sizes.
class TextScene : public Scene
{
public:
    bool init() override
    {
        _lettering.init();
        return _backdrop.init();
    }

    void draw(const Frame& frame) override
    {
        const auto width = static_cast<float>(frame.size.width);
        const auto height = static_cast<float>(frame.size.height);
        const float column = (width - 2 * cMargin - 3 * cGap) / 4;
        Cell cells[std::size(cArticles)];
        for (std::size_t i = 0; i < std::size(cells); ++i)
            cells[i] = {cMargin + static_cast<float>(i) * (column + cGap), 104, column, 272};
        _backdrop.draw(frame, cells);
        if (!_lettering.begin(frame))
            return;

        _lettering.add({cMargin, 70}, "All human beings", {Title, ColorID::White});
        _lettering.add({width - cMargin, 50}, "Universal Declaration of Human Rights\nArticle 1 \u00B7 Paris, 1948",
                       {Body, ColorID::LightSteelBlue, Font::cRight, 20});
        for (std::size_t i = 0; i < std::size(cArticles); ++i)
            addArticle(cArticles[i], cells[i]);
        for (const Sample& sample : cSamples)
        {
            const float baseline = sample.baseline + height - cHeight;
            _lettering.add({cMargin + 54, baseline}, sample.label, {Mono, ColorID::LightSteelBlue, Font::cRight});
            _lettering.add({cMargin + 74, baseline}, sample.text, {sample.face, ColorID::WhiteSmoke});
        }
        _lettering.draw();
    }

private:
    static constexpr float cMargin = 24;
    static constexpr float cGap = 16;
    static constexpr float cPadding = 16;
    static constexpr float cHeight = 600; // that the samples' baselines are meant for

    void addArticle(const Article& article, const Cell& cell)
    {
        const float left = cell.left + cPadding;
        const float right = cell.left + cell.width - cPadding;
        const float x = article.alignment == Font::cLeft    ? left
                        : article.alignment == Font::cRight ? right
                                                            : (left + right) / 2;
        _lettering.add({x, cell.top + 40}, article.language, {Heading, article.color, article.alignment});
        _lettering.add({x, cell.top + 76}, _lettering.wrapped(article.text, right - left, Body),
                       {Body, ColorID::Gainsboro, article.alignment, 20});
    }

    Backdrop _backdrop;
    Lettering _lettering{{{"serif", 48},
                          {"serif", 24},
                          {"sans", 14},
                          {"mono", 14},
                          {"sans", 12},
                          {"sans", 16},
                          {"sans", 24},
                          {"sans", 48}}};
};

} // namespace

std::unique_ptr<Scene> makeText() { return std::make_unique<TextScene>(); }

} // namespace gallery
