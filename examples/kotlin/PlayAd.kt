// An app in Kotlin: parses a response with a reader of its own and prints what to play and fire.

import com.tamzo.vast.Cancellation
import com.tamzo.vast.OpenVastAd
import com.tamzo.vast.ParseOptions
import com.tamzo.vast.TamzoVastAd
import com.tamzo.vast.UrlAnswer
import com.tamzo.vast.UrlReader
import com.tamzo.vast.VastError
import java.io.File
import kotlin.system.exitProcess

/** Answers with what the app's own HTTP client brings; here, with a file. An IOException is error 301. */
fun readerOf(file: File) = UrlReader { request ->
    if (request.isCancelled) null else UrlAnswer(file.readBytes(), 200)
}

fun show(ad: TamzoVastAd) {
    ad.mediaFiles?.forEach { println("play: ${it.url} ${it.width ?: "any"} wide") }
    for ((event, trackers) in ad.trackers.orEmpty()) {
        println("$event: ${trackers.size}")
    }
    val through: String = ad.clickThrough ?: "nowhere"
    println("click: $through")
}

fun main(arguments: Array<String>) {
    val file = File(arguments[0])
    Cancellation().use { cancellation ->
        val options = ParseOptions.Builder()
            .deadline(10.0)
            .reader(readerOf(file))
            .cancellation(cancellation)
            .build()
        val ad = TamzoVastAd.parse("https://ads.example/vast", options)
        if (ad.error() != VastError.SUCCESS) {
            println("no ad: ${ad.error()?.cause()}")
            exitProcess(1)
        }
        show(ad)
    }
    OpenVastAd.parse(file.readText(), ParseOptions.DEFAULT).use { ad ->
        val page: String? = ad.page(ParseOptions.DEFAULT)
        println("page: ${page?.length ?: 0 > 0}")
    }
}
