#pragma once

// The program's timers (the simulation clock, view redraws, palette
// refreshes) do nothing while a modal dialog or a menu is open, as timers in
// a desktop's default run-loop mode do: the world then stands still under
// the dialog, and no view or palette changes behind it. Qt fires timers in
// any event loop, so every timer's slot asks this first.
bool timersArePaused();
