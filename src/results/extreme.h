#pragma once

namespace quillet {

enum class Extreme { maximum, minimum };

}  // namespace quillet
