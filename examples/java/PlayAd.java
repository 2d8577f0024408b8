import com.tamzo.vast.MediaFile;
import com.tamzo.vast.ParseOptions;
import com.tamzo.vast.TamzoVastAd;
import com.tamzo.vast.UrlAnswer;
import com.tamzo.vast.VastError;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;

/** An app in Java: parses a response with a reader of its own and prints what to play. */
public final class PlayAd {
  private PlayAd() {}

  public static void main(String[] arguments) {
    Path file = Paths.get(arguments[0]);
    ParseOptions options =
        new ParseOptions.Builder()
            .deadline(10)
            .reader(request -> new UrlAnswer(Files.readAllBytes(file), 200))
            .build();
    TamzoVastAd ad = TamzoVastAd.parse("https://ads.example/vast", options);
    if (ad.error() != VastError.SUCCESS) {
      System.out.println("no ad: " + ad.error().cause());
      System.exit(1);
    }
    for (MediaFile each : ad.mediaFiles) {
      System.out.println("play: " + each.url);
    }
  }
}
