#include "tarn/sections/image_adjust_data.h"

#include "tarn/foundation/internal/fields.h"

namespace tarn {

struct CPMImageAdjustData::Fields {
  using R = CPMImageAdjustData;
  using F = internal::Field<R>;
  static const internal::FieldTable<R>& Table() {
    static const internal::FieldTable<R> table(R::kElementName, {
                                                                    F::Int("SAMPLING", &R::sampling_),
                                                                    F::Int("BLUR", &R::blur_),
                                                                    F::Int("SATURATION", &R::saturation_),
                                                                });
    return table;
  }
};

bool CPMImageAdjustData::ReadXML(const pugi::xml_node& node) {
  return Fields::Table().Read(*this, node);
}

void CPMImageAdjustData::WriteXML(pugi::xml_node parent) const {
  Fields::Table().Write(*this, parent.append_child(kElementName));
}

}  // namespace tarn
