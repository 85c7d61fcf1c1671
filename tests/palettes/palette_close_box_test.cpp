#include "palette_test_support.h"
#include "palettes/body_window_controller.h"
#include "palettes/graphs_window_controller.h"
#include "palettes/simulation_window_controller.h"
#include "palettes/text_output_controller.h"
#include "palettes/view_window_controller.h"

namespace {

template <typename Palette>
class PaletteCloseBox : public PaletteTest<Palette> {};

using Palettes = testing::Types<SimulationWindowController, ViewWindowController,
                                BodyWindowController, GraphsWindowController, TextOutputController>;
TYPED_TEST_SUITE(PaletteCloseBox, Palettes);

// The close box ends in the palette's own toggle, sent by the palette (so
// the controller leaves the closing to it), which stops the refresh: hidden,
// nothing changes its fields until it is shown again.
TYPED_TEST(PaletteCloseBox, SendsItsToggleAndStopsTheRefresh) {
  this->giveView();
  this->show();
  ASSERT_TRUE(clickCloseBox(this->win));
  // The show from the menu, then the close box.
  EXPECT_EQ(this->host.toggles, (std::vector<QObject*>{nullptr, &this->palette}));
  EXPECT_FALSE(this->visible);
  EXPECT_EQ(refreshTimer(this->palette), nullptr);
}

}  // namespace
