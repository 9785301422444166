// Asks for what the build has left out: the folder of the samples comes first, then a movie.

#include <zorvan/media/AVAsset.h>
#include <zorvan/media/AVPlayer.h>
#include <zorvan/media/CGImage.h>
#include <zorvan/platform/avfoundation/MediaPlayer.h>
#include <zorvan/platform/imageio/ImageReader.h>
#include <zorvan/settings/UserKeychain.h>

#include <iostream>
#include <string>

using namespace zorvan;

int main(int, char** arguments) {
    const URL movie({.fileURLWithPath = arguments[2]});
    const auto item = AVPlayerItem::create(movie);
    const auto player = AVPlayer::create(item);
    player->setRate(1);
    const avfoundation::MediaPlayer engine(arguments[2], 0, {});
    std::cout << "player failed: " << (item->status() == AVPlayerItem::Status::failed)
              << (engine.status() == avfoundation::MediaPlayer::Status::failed) << ", rate "
              << player->rate() << '\n';

    std::cout << "movie readable: " << AVAsset::create(movie)->isReadable() << '\n';

    const std::string picture = std::string(arguments[1]) + "/plain.heic";
    std::cout << "picture: " << imageio::ImageReader::open(picture)->error() << '\n';
    const CGImage::Pointer drawn = CGImage::image(URL({.fileURLWithPath = picture}));
    const CGImage::Pointer other =
        CGImage::image(URL({.fileURLWithPath = std::string(arguments[1]) + "/alpha.png"}));
    std::cout << "picture read: " << (drawn != nullptr)
              << ", written: " << other->data(ImageExportFormat::heic).has_value() << '\n';

    const auto keychain = UserKeychain::create({.serviceName = "org.example.without"});
    const UserKeychain::Key password("ada");
    const bool isStored = keychain->set("correct horse", password);
    std::cout << "secret kept: " << (isStored && keychain->string(password) == "correct horse")
              << '\n';
}
