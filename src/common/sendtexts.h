#pragma once

// Language entries of addressing a message written as an MMS send request (Export as MMS).
namespace mms::sendtexts {

// Interface text: the label of the recipients field in the subject window.
constexpr int kRecipientsLabel = 70;
// Error text: a piece of the recipients field that is no address; "%1" is the piece.
constexpr int kNotAnAddress = 32;

} // namespace mms::sendtexts
