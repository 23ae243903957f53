#pragma once

#include "Fuzz.h"

#include <gui/gl/View.h>
#include <gui/gl/port/Fingers.h>
#include <gui/gl/port/HostedView.h>
#include <gui/gl/port/Zav.h>
#include <td/Point.h>
#include <td/Size.h>

#include <set>
#include <vector>

namespace fuzz::views
{

/// A view in a window, a user without a plan, a window system that loses what it should tell, and a program that hands
/// over anything, also from inside the view's handlers. What is true of all views is looked at after each step; each
/// kind of view adds what the program can do to it, and what is true of it.
class ViewWorld : protected Careless
{
public:
    virtual ~ViewWorld();
    ViewWorld(const ViewWorld&) = delete;
    ViewWorld& operator=(const ViewWorld&) = delete;

    /// Does one thing after the other until the input ends, and lets the view come to rest.
    void live();

    // For the view's handlers.
    void hear(); ///< does something now and then
    bool decide() { return !_isAtRest && _input.below(4) == 1; }
    void noteRelease() { ++_nReleases; } ///< of a key
    void noteComposition(bool isComposing) { _isComposing = isComposing; }

protected:
    explicit ViewWorld(Input& input);

    virtual gui::gl::View& view() = 0;
    /// Something that the program does to it.
    virtual void change() = 0;
    /// What is true of it always.
    virtual void check() = 0;
    /// What it shows, in numbers.
    virtual std::vector<double> where() = 0;
    /// Ends what goes on by itself.
    virtual void stop() {}

    /// Before a call: whether the header calls it a programming error.
    void expect(bool isMisuse) { _nMisuses += isMisuse ? 1 : 0; }
    unsigned int nLines() const { return _quiet.nLines; }
    /// Whether no handler has done anything since there were so many.
    bool isUntouched(unsigned int nActs) const { return _nActs == nActs; }
    unsigned int nActs() const { return _nActs; }

    unsigned int takeModifiers() { return _input.below(3) == 1 ? _input.below(64) : 0; }
    td::Point<double> takePoint();
    /// Mostly in the view.
    td::Point<double> takePlace();
    td::RectNormalized<double> takeRect();
    td::Color takeColor() { return td::Color::fromRGB(_input.take<std::uint16_t>() * 251U); }

private:
    struct Desk;
    class Surface;

    gui::gl::NativeSurfaceClient* client() const;
    void act();
    void changeView();
    void useWindow();
    void useButton();
    void useMotion();
    void useWheel();
    void useFingers();
    void useKey();
    void type();
    void loseFocus(bool isHidden);
    void draw();
    void checkView();
    void comeToRest();
    /// Nothing is seen to change by what has such numbers.
    template <typename Say>
    void tell(bool isFinite, const Say& say);

    Quiet _quiet;
    std::unique_ptr<Desk> _pDesk, _pOtherDesk;
    gui::gl::Fingers _fingers;
    zav::SurfaceScope _scope;
    std::set<unsigned short> _held; // keys
    unsigned int _nMisuses = 0, _nActs = 0, _nReleases = 0;
    int _depth = 0; // of handlers in handlers
    bool _hasFirst = false, _isAtRest = false, _isComposing = false;
};

} // namespace fuzz::views
