// Scene files as documents: everything the format holds is read into the
// document model, written back byte for byte, and every kind of bad input
// is refused with a message that says where and what was expected.
#include <gtest/gtest.h>

#include <string>

#include "io/SceneDoc.h"
#include "support/JsonReader.h"
#include "support/JsonWriter.h"

using namespace kxscene;

namespace {

// Every field of the format, laid out exactly as the writer lays it out.
const char* const kFullScene = R"({
  "format": "kxscene",
  "version": 1,
  "view": {
    "camera": {"location":[10,-20,30.5],"forward":[0,0.6,-0.8],"up":[0,0.8,0.6]},
    "range": 42.25,
    "renderMode": 4,
    "background": [40,60,80,255]
  },
  "objects": [
    {
      "externId": 4294967295,
      "xdata": "墙 W-1 \"main\"",
      "visible": false,
      "renderMode": 0,
      "generateShadow": true,
      "faceSnap": true,
      "maxUnitsPerPixel": 0.25,
      "snapPoints": [[0,0,0],[6,0,0]],
      "shapes": [
        {"kind":"pgon","color":[225,205,160,255],"normal":[0,-1,0],"pts":[[0,0,0],[6,0,0],[6,0,3],[0,0,3],[0,0,0]],"holes":[[[2,0,0.75],[2,0,2.25],[4,0,2.25],[4,0,0.75],[2,0,0.75]]],"border":{"show":true,"color":[0,0,0,255],"width":2.5,"scaled":true,"max":6},"texture":"brick.png","offsets":{"factorScale":2,"unitScale":0.5,"zOffset":0.125},"tags":{"nodepth":"0.1","坡屋顶":"外面"},"hitLines":[[[0,0,0],[6,0,0]]]},
        {"kind":"pline","color":[40,40,45,255],"normal":[0,0,1],"visible":false,"pts":[[0,0,0],[1,1,1]],"dotLine":true},
        {"kind":"face","color":[170,210,255,128],"normal":[0,-1,0],"vertices":[[2,0,0.75],[4,0,0.75],[4,0,2.25],[2,0,2.25]],"triangles":[0,1,2,0,2,3],"normals":[[0,-1,0],[0,-1,0],[0,-1,0],[0,-1,0]],"texCoords":[[0,0],[1,0],[1,1],[0,1]]},
        {"kind":"text","color":[255,255,255,255],"normal":[0,0,1],"text":"房间1-1","font":"simsun","height":0.6,"position":[1.5,1.5,1.5],"dir1":[1,0,0],"dir2":[0,1,0]}
      ],
      "lod": [
        {
          "unitsPerPixel": 0.05,
          "shapes": [
            {"kind":"pline","color":[255,255,255,255],"normal":[0,0,1],"pts":[[0,0,0],[6,0,0]]}
          ]
        }
      ]
    },
    {
      "externId": 7,
      "shapes": [
        {"kind":"pgon","color":[1,2,3,4],"normal":[0,0,1],"pts":[[0.1,0.2,0.30000000000000004],[1e-300,5e-324,-0],[1.7976931348623157e+308,1,2]]}
      ]
    }
  ],
  "staticObjects": [
    {
      "visible": false,
      "primitives": [
        {"type":"lineLoop","points":[[0,0,0],[1,0,0],[1,1,0]],"colors":[[255,0,0]]},
        {"type":"triangleFan","points":[[0,0,0],[1,0,0],[1,1,0]],"normals":[[0,0,1]],"colors":[[1,2,3],[4,5,6],[7,8,9]],"texCoords":[[0,0],[1,0],[1,1]]}
      ]
    }
  ]
}
)";

bool parse(const std::string& text, SceneDoc& doc, std::string& error) {
  JsonReader r(text.data(), text.size());
  return parseSceneDoc(r, "house.json", doc, error);
}

std::string write(const SceneDoc& doc) {
  std::string out, error;
  JsonWriter w(&out);
  EXPECT_TRUE(writeSceneDoc(w, doc, error)) << error;
  EXPECT_TRUE(w.finish()) << w.error();
  return out;
}

// The error for a document, without its position.
std::string errorOf(const std::string& text) {
  SceneDoc doc;
  std::string error;
  if (parse(text, doc, error)) return "(accepted)";
  const size_t at = error.rfind(" (line ");
  return at == std::string::npos ? error : error.substr(0, at);
}

// A valid one-object document with `shape` as its only shape.
std::string withShape(const std::string& shape) {
  return R"({"format":"kxscene","version":1,"objects":[{"shapes":[{"kind":"pline","pts":[[0,0,0],[1,0,0]]}]},)"
         R"({"externId":5,"shapes":[)" +
         shape + "]}]}";
}

std::string withObject(const std::string& object) {
  return R"({"format":"kxscene","version":1,"objects":[)" + object + "]}";
}

std::string withView(const std::string& view) { return R"({"format":"kxscene","version":1,"view":)" + view + "}"; }

const char* const kGoodView =
    R"({"camera":{"location":[0,0,0],"forward":[0,0,-1],"up":[0,1,0]},"range":10,"renderMode":2,"background":[0,0,0,255]})";

}  // namespace

TEST(SceneDoc, ReadsEveryField) {
  SceneDoc doc;
  std::string error;
  ASSERT_TRUE(parse(kFullScene, doc, error)) << error;
  ASSERT_TRUE(doc.hasView);
  EXPECT_EQ(doc.view.location.y, -20.0);
  EXPECT_EQ(doc.view.forward.z, -0.8);
  EXPECT_EQ(doc.view.up.y, 0.8);
  EXPECT_EQ(doc.view.range, 42.25);
  EXPECT_EQ(doc.view.renderMode, 4);
  EXPECT_EQ(doc.view.background, CColor(40, 60, 80, 255));

  ASSERT_EQ(doc.objects.size(), 2u);
  const ObjectDoc& o = doc.objects[0];
  EXPECT_EQ(o.externId, 4294967295u);
  EXPECT_EQ(o.xdata, "\xE5\xA2\x99 W-1 \"main\"");
  EXPECT_FALSE(o.visible);
  EXPECT_EQ(o.renderMode, 0);
  EXPECT_TRUE(o.generateShadow);
  EXPECT_TRUE(o.faceSnap);
  EXPECT_TRUE(o.hasMaxUnitsPerPixel);
  EXPECT_EQ(o.maxUnitsPerPixel, 0.25);
  ASSERT_EQ(o.snapPoints.size(), 2u);
  EXPECT_EQ(o.snapPoints[1].x, 6.0);
  ASSERT_EQ(o.shapes.size(), 4u);

  const ShapeDoc& wall = o.shapes[0];
  EXPECT_EQ(wall.kind, CRenderShape::kPgon);
  EXPECT_EQ(wall.color, CColor(225, 205, 160, 255));
  EXPECT_EQ(wall.normal.y, -1.0);
  EXPECT_EQ(wall.pts.size(), 5u);
  ASSERT_EQ(wall.holes.size(), 1u);
  EXPECT_EQ(wall.holes[0][1].z, 2.25);
  EXPECT_TRUE(wall.showBorder);
  EXPECT_EQ(wall.borderColor, CColor(0, 0, 0, 255));
  EXPECT_EQ(wall.borderWidth, 2.5f);
  EXPECT_TRUE(wall.borderScaled);
  EXPECT_EQ(wall.borderMax, 6.0f);
  EXPECT_EQ(wall.texture, "brick.png");
  EXPECT_EQ(wall.factorScale, 2.0);
  EXPECT_EQ(wall.unitScale, 0.5);
  EXPECT_EQ(wall.zOffset, 0.125f);
  ASSERT_EQ(wall.tags.size(), 2u);
  EXPECT_EQ(wall.tags.at("nodepth"), "0.1");
  EXPECT_EQ(wall.tags.at("\xE5\x9D\xA1\xE5\xB1\x8B\xE9\xA1\xB6"), "\xE5\xA4\x96\xE9\x9D\xA2");
  ASSERT_EQ(wall.hitLines.size(), 1u);
  EXPECT_EQ(wall.hitLines[0].size(), 2u);

  const ShapeDoc& line = o.shapes[1];
  EXPECT_EQ(line.kind, CRenderShape::kPline);
  EXPECT_FALSE(line.visible);
  EXPECT_TRUE(line.dotLine);
  EXPECT_FALSE(line.showBorder);
  EXPECT_EQ(line.borderWidth, 1.2f);

  const ShapeDoc& glass = o.shapes[2];
  EXPECT_EQ(glass.kind, CRenderShape::kFace);
  EXPECT_EQ(glass.color.a, 128);
  EXPECT_EQ(glass.vertices.size(), 4u);
  EXPECT_EQ(glass.triangles, (std::vector<int>{0, 1, 2, 0, 2, 3}));
  EXPECT_EQ(glass.normals.size(), 4u);
  ASSERT_EQ(glass.texCoords.size(), 4u);
  EXPECT_EQ(glass.texCoords[2].y, 1.0);

  const ShapeDoc& label = o.shapes[3];
  EXPECT_EQ(label.kind, CRenderShape::kText);
  EXPECT_EQ(label.text, "\xE6\x88\xBF\xE9\x97\xB4" "1-1");
  EXPECT_EQ(label.font, "simsun");
  EXPECT_EQ(label.height, 0.6);
  EXPECT_EQ(label.position.z, 1.5);

  ASSERT_EQ(o.lods.size(), 1u);
  EXPECT_EQ(o.lods[0].unitsPerPixel, 0.05f);
  EXPECT_EQ(o.lods[0].shapes.size(), 1u);

  const ShapeDoc& extreme = doc.objects[1].shapes[0];
  EXPECT_EQ(extreme.pts[0].z, 0.1 + 0.2);
  EXPECT_EQ(extreme.pts[1].y, 5e-324);
  EXPECT_TRUE(std::signbit(extreme.pts[1].z));
  EXPECT_EQ(extreme.pts[2].x, 1.7976931348623157e308);
  EXPECT_EQ(doc.objects[1].externId, 7u);
  EXPECT_TRUE(doc.objects[1].visible);
  EXPECT_EQ(doc.objects[1].renderMode, 2);

  ASSERT_EQ(doc.statics.size(), 1u);
  EXPECT_FALSE(doc.statics[0].visible);
  ASSERT_EQ(doc.statics[0].primitives.size(), 2u);
  const KxStaticPrimitive& fan = doc.statics[0].primitives[1];
  EXPECT_EQ(fan.type, CRenderSystem::kTriangleFan);
  EXPECT_EQ(fan.normals.size(), 1u);
  EXPECT_EQ(fan.colors.size(), 3u);
  EXPECT_EQ(fan.colors[2], CColor(7, 8, 9, 255));
  EXPECT_EQ(doc.statics[0].primitives[0].type, CRenderSystem::kLineLoop);
}

TEST(SceneDoc, WritesWhatItReadByteForByte) {
  SceneDoc doc;
  std::string error;
  ASSERT_TRUE(parse(kFullScene, doc, error)) << error;
  EXPECT_EQ(write(doc), kFullScene);
}

TEST(SceneDoc, MissingOptionalPartsTakeTheirDefaults) {
  SceneDoc doc;
  std::string error;
  ASSERT_TRUE(parse(R"({"format":"kxscene","version":1})", doc, error)) << error;
  EXPECT_FALSE(doc.hasView);
  EXPECT_TRUE(doc.objects.empty());
  ASSERT_TRUE(parse(withShape(R"({"kind":"pgon","pts":[[0,0,0],[1,0,0],[0,1,0]]})"), doc, error)) << error;
  const ShapeDoc& s = doc.objects[1].shapes[0];
  EXPECT_EQ(s.color, CColor(255, 255, 255, 255));
  EXPECT_EQ(s.normal.z, 1.0);
  EXPECT_TRUE(s.visible);
  EXPECT_EQ(s.factorScale, 1.0);
  EXPECT_EQ(s.zOffset, 0.0f);
  EXPECT_EQ(s.borderMax, 8.0f);
  EXPECT_TRUE(s.texture.IsEmpty());
  // Written back, only what differs from the defaults appears.
  const std::string text = write(doc);
  EXPECT_NE(text.find(R"({"kind":"pgon","color":[255,255,255,255],"normal":[0,0,1],"pts":[[0,0,0],[1,0,0],[0,1,0]]})"),
            std::string::npos)
      << text;
}

TEST(SceneDoc, ErrorsNameTheFileTheObjectTheFieldAndTheExpectation) {
  EXPECT_EQ(errorOf(withShape(R"({"kind":"pgon","pts":"none"})")),
            "house.json: object 1: shape 0: field \"pts\": expected an array of 3-number points");
  EXPECT_EQ(errorOf(withShape(R"({"kind":"pgon","pts":[[0,0,0],[1,0],[0,1,0]]})")),
            "house.json: object 1: shape 0: field \"pts\": point 1: expected a point of 3 numbers [x, y, z] but "
            "found 2 numbers");
  EXPECT_EQ(errorOf(withShape(R"({"kind":"circle","pts":[[0,0,0]]})")),
            "house.json: object 1: shape 0: field \"kind\": unknown shape kind \"circle\" (expected pline, pgon, "
            "text or face)");
  EXPECT_EQ(errorOf(withObject(R"({"externId":3})")), "house.json: object 0: missing field \"shapes\"");
  EXPECT_EQ(errorOf(withShape(R"({"pts":[[0,0,0],[1,0,0]]})")), "house.json: object 1: shape 0: missing field \"kind\"");
  EXPECT_EQ(errorOf(withShape(R"({"kind":"pgon","pts":[[1e400,0,0],[1,0,0],[0,1,0]]})")),
            "house.json: object 1: shape 0: field \"pts\": point 0: number 1e400 is out of range");
  EXPECT_EQ(errorOf(withShape(R"({"kind":"pgon","pts":[[0,0,0],[1,0,0],[0,1,0]],"border":{"width":"2"}})")),
            "house.json: object 1: shape 0: field \"border.width\": expected a number");
  EXPECT_EQ(errorOf(withShape(R"({"kind":"pgon","pts":[[0,0,0],[1,0,0],[0,1,0]],"border":{"width":1e39}})")),
            "house.json: object 1: shape 0: field \"border.width\": number 1e39 is out of range for a "
            "single-precision value");
  EXPECT_EQ(errorOf(withObject(R"({"externId":-1,"shapes":[]})")),
            "house.json: object 0: field \"externId\": expected an integer from 0 to 4294967295 but found -1");
  EXPECT_EQ(errorOf(withObject(R"({"externId":1.5,"shapes":[]})")),
            "house.json: object 0: field \"externId\": expected an integer from 0 to 4294967295 but found 1.5");
  EXPECT_EQ(errorOf(withObject(R"({"shapes":[]})")),
            "house.json: object 0: field \"shapes\": an object needs at least one shape");
}

TEST(SceneDoc, RefusesShapesThatCannotBeDrawnSafely) {
  struct Case {
    std::string shape;
    const char* message;
  };
  const std::string tail = R"(,"vertices":[[0,0,0],[1,0,0],[0,1,0]])";
  const Case cases[] = {
      {R"({"kind":"pgon","pts":[[0,0,0],[1,0,0]]})", "field \"pts\": a pgon needs at least 3 points"},
      {R"({"kind":"pline","pts":[[0,0,0]]})", "field \"pts\": a pline needs at least 2 points"},
      {R"({"kind":"pgon","pts":[[0,0,0],[1,0,0],[0,1,0]],"holes":[[[0,0,0],[1,0,0]]]})",
       "field \"holes\": hole 0: a hole needs at least 3 points"},
      {R"({"kind":"pline","pts":[[0,0,0],[1,0,0]],"holes":[]})", "field \"holes\" does not belong to a pline shape"},
      {R"({"kind":"pgon","pts":[[0,0,0],[1,0,0],[0,1,0]],"normal":[0,0,0]})",
       "field \"normal\": expected a direction of non-zero length"},
      {R"({"kind":"pgon","pts":[[0,0,0],[1,0,0],[0,1,0]],"color":[0,0,256,0]})",
       "field \"color\": expected a colour [red, green, blue, alpha] of integers 0 to 255 but found 256"},
      {R"({"kind":"pgon","pts":[[0,0,0],[1,0,0],[0,1,0]],"color":[0,0,0]})",
       "field \"color\": expected a colour [red, green, blue, alpha] of integers 0 to 255"},
      {R"({"kind":"pgon","pts":[[0,0,0],[1,0,0],[0,1,0]],"tags":{"kxscene.texture":"a.png"}})",
       "field \"tags.kxscene.texture\": the tag key is reserved for the texture file name"},
      {R"({"kind":"pgon","pts":[[0,0,0],[1,0,0],[0,1,0]],"tags":{"a":1}})", "field \"tags.a\": expected a string"},
      {R"({"kind":"pgon","pts":[[0,0,0],[1,0,0],[0,1,0]],"texture":""})",
       "field \"texture\": expected a texture file name"},
      {R"({"kind":"pgon","pts":[[0,0,0],[1,0,0],[0,1,0]],"offsets":{"zOffset":1,"scale":2}})",
       "field \"offsets\": unknown field \"scale\""},
      {R"({"kind":"face","triangles":[0,1,2]})", "missing field \"vertices\""},
      {R"({"kind":"face","triangles":[0,1,3])" + tail + "}", "field \"triangles\": index 3 at position 2 is past the last of 3 vertices"},
      {R"({"kind":"face","triangles":[0,1])" + tail + "}",
       "field \"triangles\": expected three vertex indices per triangle, at least one triangle"},
      {R"({"kind":"face","triangles":[0,-1,2])" + tail + "}",
       "field \"triangles\": expected an integer from 0 to 2147483647 but found -1"},
      {R"({"kind":"face","triangles":[0,1,2],"normals":[[0,0,1]])" + tail + "}",
       "field \"normals\": expected one normal per vertex (3)"},
      {R"({"kind":"face","triangles":[0,1,2],"texCoords":[[0,0],[1,0]])" + tail + "}",
       "field \"texCoords\": expected one pair per vertex (3)"},
      {R"({"kind":"face","triangles":[0,1,2],"pts":[[0,0,0],[1,0,0]])" + tail + "}",
       "field \"pts\" does not belong to a face shape"},
      {R"({"kind":"text","text":"a","height":0,"position":[0,0,0]})",
       "field \"height\": expected a text height above 0"},
      {R"({"kind":"text","height":1,"position":[0,0,0]})", "missing field \"text\""},
      {R"({"kind":"pgon","pts":[[0,0,0],[1,0,0],[0,1,0]],"pts":[]})", "field \"pts\" given twice"},
      {R"({"kind":"pgon","pts":[[0,0,0],[1,0,0],[0,1,0]],"colour":[0,0,0,0]})", "unknown field \"colour\""},
      {R"({"kind":"pgon","pts":[[0,0,0],[1,0,0],[0,1,0]],"hitLines":[[[0,0,0]]]})",
       "field \"hitLines\": line 0: expected at least 2 points but found 1"},
  };
  for (const Case& c : cases)
    EXPECT_EQ(errorOf(withShape(c.shape)), std::string("house.json: object 1: shape 0: ") + c.message) << c.shape;
}

TEST(SceneDoc, ChecksTheHeaderViewLevelsAndStaticObjects) {
  EXPECT_EQ(errorOf(R"({"version":1,"format":"kxscene"})"),
            "house.json: expected the document to start with \"format\": \"kxscene\", \"version\": 1");
  EXPECT_EQ(errorOf(R"({"format":"kxmodel","version":1})"),
            "house.json: field \"format\": expected \"kxscene\" but found \"kxmodel\"");
  EXPECT_EQ(errorOf(R"({"format":"kxscene","version":2})"),
            "house.json: field \"version\": version 2 is newer than this reader, which reads version 1");
  EXPECT_EQ(errorOf(R"([1,2])"), "house.json: expected a scene document (a JSON object)");
  EXPECT_EQ(errorOf(R"({"format":"kxscene","version":1,"extra":0})"), "house.json: unknown field \"extra\"");
  EXPECT_EQ(errorOf(R"({"format":"kxscene","version":1} {})"),
            "house.json: unexpected '{' after the end of the document");
  EXPECT_EQ(errorOf(R"({"format":"kxscene","version":1,"objects":{}})"),
            "house.json: field \"objects\": expected an array of objects");

  EXPECT_EQ(errorOf(withView(kGoodView)), "(accepted)");
  std::string v = kGoodView;
  EXPECT_EQ(errorOf(withView(std::string(v).replace(v.find("10"), 2, "1e16"))),
            "house.json: field \"view.range\": expected a range from 1e-06 to 1e+15");
  EXPECT_EQ(errorOf(withView(std::string(v).replace(v.find("[0,1,0]"), 7, "[0,0,2]"))),
            "house.json: field \"view.camera\": the up and forward directions are parallel");
  EXPECT_EQ(errorOf(withView(std::string(v).replace(v.find(",\"renderMode\":2"), 15, ""))),
            "house.json: field \"view\": missing field \"renderMode\"");

  EXPECT_EQ(errorOf(withObject(R"({"shapes":[{"kind":"pline","pts":[[0,0,0],[1,0,0]]}],"lod":[{"shapes":[]}]})")),
            "house.json: object 0: level 0: missing field \"unitsPerPixel\"");
  EXPECT_EQ(errorOf(withObject(
                R"({"shapes":[{"kind":"pline","pts":[[0,0,0],[1,0,0]]}],"lod":[{"unitsPerPixel":1,"shapes":[{"kind":"pgon"}]}]})")),
            "house.json: object 0: level 0: shape 0: missing field \"pts\"");

  const std::string statics = R"({"format":"kxscene","version":1,"staticObjects":[{"primitives":[)";
  EXPECT_EQ(errorOf(statics + R"({"type":"quads","points":[[0,0,0]]}]}]})"),
            "house.json: static object 0: primitive 0: field \"type\": unknown primitive \"quads\" (expected "
            "points, lines, lineStrip, lineLoop, triangles, triangleStrip or triangleFan)");
  EXPECT_EQ(errorOf(statics + R"({"type":"lines","points":[[0,0,0],[1,0,0],[2,0,0]],"colors":[[0,0,0],[1,1,1]]}]}]})"),
            "house.json: static object 0: primitive 0: field \"colors\": expected none, one, or one per point");
  EXPECT_EQ(errorOf(statics + R"({"type":"lines","points":[[0,0,0]],"colors":[[0,0,0,0]]}]}]})"),
            "house.json: static object 0: primitive 0: field \"colors\": colour 0: expected a colour [red, green, "
            "blue] of integers 0 to 255");
  EXPECT_EQ(errorOf(statics + R"({"type":"lines"}]}]})"), "house.json: static object 0: primitive 0: missing field \"points\"");
}

TEST(SceneDoc, TruncationAtAnyPointIsAnErrorWithAPosition) {
  // Every proper prefix of a valid file is refused, whatever it cuts.
  const std::string full = kFullScene;
  const std::string trimmed = full.substr(0, full.find_last_not_of("\n") + 1);
  for (size_t n = 0; n < trimmed.size(); ++n) {
    SceneDoc doc;
    std::string error;
    ASSERT_FALSE(parse(trimmed.substr(0, n), doc, error)) << "prefix of " << n << " bytes accepted";
    ASSERT_EQ(error.rfind("house.json: ", 0), 0u) << error;
    ASSERT_NE(error.find(" (line "), std::string::npos) << error;
  }
  EXPECT_EQ(errorOf(trimmed.substr(0, trimmed.find("\"pts\":[[0,0,0],[6") + 17)),
            "house.json: object 0: shape 0: field \"pts\": point 1: expected ',' or ']' but found the end of the file");
}

TEST(SceneDoc, ErrorPositionIsTheOffendingValue) {
  SceneDoc doc;
  std::string error;
  const std::string text = "{\"format\": \"kxscene\", \"version\": 1,\n\"objects\": [\n  {\"shapes\": 12}\n]}";
  ASSERT_FALSE(parse(text, doc, error));
  EXPECT_EQ(error, "house.json: object 0: field \"shapes\": expected an array of shapes (line 3, column 14)");
}

TEST(SceneDoc, DamagedDocumentsAreRefusedOrReadWhole) {
  // Seeded damage to a valid document: bytes changed, dropped or doubled.
  // Every outcome is a clean refusal with a located message, or a document
  // that writes out and reads back the same.
  const std::string full = kFullScene;
  uint32_t state = 12345;
  auto next = [&state] { return state = state * 1664525u + 1013904223u; };
  const char alphabet[] = "{}[],:\"0123456789.-+eE \\tfnrua";
  size_t refused = 0, accepted = 0;
  for (int round = 0; round < 3000; ++round) {
    std::string text = full;
    const int edits = 1 + int(next() % 3);
    for (int e = 0; e < edits; ++e) {
      const size_t at = next() % text.size();
      switch (next() % 3) {
        case 0:
          text[at] = alphabet[next() % (sizeof alphabet - 1)];
          break;
        case 1:
          text.erase(at, 1 + next() % 4);
          break;
        default:
          text.insert(at, text.substr(at, 1 + next() % 8));
          break;
      }
      if (text.empty()) text = "x";
    }
    SceneDoc doc;
    std::string error;
    if (!parse(text, doc, error)) {
      ++refused;
      ASSERT_EQ(error.rfind("house.json: ", 0), 0u) << error;
      ASSERT_NE(error.find(" (line "), std::string::npos) << error;
      continue;
    }
    ++accepted;
    const std::string once = write(doc);
    SceneDoc again;
    ASSERT_TRUE(parse(once, again, error)) << error;
    ASSERT_EQ(write(again), once);
  }
  EXPECT_GT(refused, 2000u);
  EXPECT_GT(accepted, 10u);
}
