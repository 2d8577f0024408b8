// The smallest use: parse the response in a file, and list what can be played.

#include <fstream>
#include <iostream>
#include <iterator>

#include "tamzo/vast/TamzoVastAd.h"

int main(int argc, char** argv) {
  std::ifstream file(argc > 1 ? argv[1] : "response.xml");
  const std::string response(std::istreambuf_iterator<char>(file), {});

  const auto ad = tamzo::TamzoVastAd::initWithVast(response);
  if (ad->errorCode() != tamzo::kNoError) {
    std::cerr << "no ad: " << tamzo::findVastError(ad->errorCode())->cause << '\n';
    return 1;
  }
  for (const auto& media : *ad->mediaFiles()) {
    std::cout << media->type().view() << ' ' << media->url().view() << '\n';
  }
}
