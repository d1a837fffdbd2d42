#pragma once

/// A flow's tree of steps as a picture for documents (SVG).

#include <string>
#include <vector>

#include "tree.h"
#include "waiting.h"

namespace talm_flow::program {

/// What a picture shows besides the steps.
struct PictureText {
  std::string title;
  std::string subtitle;
};

/// The tree below step 1, cards with number, command and caption. The steps that wait are marked and tell for what.
[[nodiscard]] std::string MakePicture(const PictureText& text, const std::vector<StepRow>& steps,
                                      const Waiting& waiting);

}  // namespace talm_flow::program
