package com.tamzo.vast;

import java.io.IOException;
import java.lang.reflect.Field;
import java.lang.reflect.Modifier;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.util.List;
import java.util.Map;

/**
 * Writes, for each response that is named, a line with the record as the classes have it and one with
 * the record's own JSON. check-records.py compares them.
 */
public final class DumpRecords {
  private DumpRecords() {}

  public static void main(String[] files) throws IOException {
    StringBuilder out = new StringBuilder();
    for (String file : files) {
      ParseOptions options = Responses.reading(request -> nextOf(file, request.hop));
      byte[] response = Files.readAllBytes(Paths.get(file));
      try (OpenVastAd ad = OpenVastAd.parse(response, options)) {
        write(out, ad.record());
        out.append('\n').append(ad.asJson(false)).append('\n');
      }
    }
    System.out.write(out.toString().getBytes(StandardCharsets.UTF_8));
    System.out.flush();
  }

  /** CASE.2.xml is the second document of CASE.xml's chain. */
  private static UrlAnswer nextOf(String file, int hop) throws IOException {
    Path next = Paths.get(file.replaceFirst("xml$", hop + ".xml"));
    return Files.exists(next) ? new UrlAnswer(Files.readAllBytes(next)) : null;
  }

  private static void write(StringBuilder out, Object value) {
    if (value == null || value instanceof Boolean || value instanceof Integer || value instanceof Long) {
      out.append(value);
    } else if (value instanceof Number) {
      double number = ((Number) value).doubleValue();
      out.append(Double.isNaN(number) || Double.isInfinite(number) ? "\"" + value + "\"" : value.toString());
    } else if (value instanceof String) {
      writeText(out, (String) value);
    } else if (value instanceof List) {
      String separator = "[";
      for (Object each : (List<?>) value) {
        out.append(separator);
        write(out, each);
        separator = ",";
      }
      out.append(separator.equals("[") ? "[]" : "]");
    } else if (value instanceof Map) {
      String separator = "";
      out.append('{');
      for (Map.Entry<?, ?> each : ((Map<?, ?>) value).entrySet()) {
        out.append(separator);
        writeText(out, (String) each.getKey());
        out.append(':');
        write(out, each.getValue());
        separator = ",";
      }
      out.append('}');
    } else {
      writeFields(out, value);
    }
  }

  private static void writeFields(StringBuilder out, Object value) {
    String separator = "";
    out.append('{');
    for (Field field : value.getClass().getFields()) {
      if (Modifier.isStatic(field.getModifiers())) {
        continue;
      }
      out.append(separator);
      writeText(out, field.getName());
      out.append(':');
      try {
        write(out, field.get(value));
      } catch (IllegalAccessException e) {
        throw new AssertionError(e);
      }
      separator = ",";
    }
    out.append('}');
  }

  private static void writeText(StringBuilder out, String text) {
    out.append('"');
    for (int at = 0; at < text.length(); ++at) {
      char each = text.charAt(at);
      if (each < ' ' || each == '"' || each == '\\' || each > '~') {
        out.append(String.format("\\u%04x", (int) each));
      } else {
        out.append(each);
      }
    }
    out.append('"');
  }
}
