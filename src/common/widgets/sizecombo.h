#pragma once

class QComboBox;

namespace mms {

// Widens the drop-down list of `combo` so that its longest entry fits (at least 10 pixels);
// returns that width.
int SizeCombo(QComboBox* combo);

} // namespace mms
