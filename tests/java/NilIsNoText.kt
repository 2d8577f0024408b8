// Must not compile: each line is a mistake that the annotations of the classes let Kotlin see.

import com.tamzo.vast.ParseOptions
import com.tamzo.vast.TamzoVastAd

fun mistakes(ad: TamzoVastAd) {
    val text: String = ad.adID
    println(ad.mediaFiles.size)
    TamzoVastAd.parse("<VAST/>", null)
}
