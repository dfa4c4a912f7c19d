#include "host/transfer/Variants.h"

namespace quill {

void GetOlePicture(const TPicture& Picture, TOlePicture& Value) {
    auto Copy = std::make_shared<TPicture>();
    Copy->SetGraphic(Picture.GetGraphic());
    Value = std::move(Copy);
}

void SetOlePicture(TPicture& Picture, const TOlePicture& Value) {
    Picture.SetGraphic(Value ? Value->GetGraphic() : nullptr);
}

} // namespace quill
