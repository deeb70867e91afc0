<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="ja">
<context>
    <name>ChartReadout</name>
    <message>
        <source>波数 %1 cycle/m   PSD %2 mm²/(cycle/m)</source>
        <translation>Wavenumber %1 cycle/m   PSD %2 mm²/(cycle/m)</translation>
    </message>
    <message>
        <source>ずらし量 %1   相互相関値 %2</source>
        <translation>Shift %1   Cross-correlation %2</translation>
    </message>
    <message>
        <source>距離 %1 m</source>
        <translation>Distance %1 m</translation>
    </message>
    <message>
        <source>   値 %1 %2</source>
        <translation>   Value %1 %2</translation>
    </message>
</context>
<context>
    <name>ChartView</name>
    <message>
        <source>全体表示</source>
        <translation>Show all</translation>
    </message>
</context>
<context>
    <name>ConditionsForm</name>
    <message>
        <source>走行速度 (km/h)</source>
        <translation>Speed (km/h)</translation>
    </message>
    <message>
        <source>助走区間 (m)</source>
        <translation>Lead-in (m)</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>キャンセル</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>長波長側カットオフ (m)</source>
        <translation>Long-wave cut-off (m)</translation>
    </message>
    <message>
        <source>短波長側カットオフ (m)</source>
        <translation>Short-wave cut-off (m)</translation>
    </message>
    <message>
        <source>パワー重み付け</source>
        <translation>Power weighting</translation>
    </message>
    <message>
        <source>バンド別低減ライン (mm)</source>
        <translation>Band reduction lines (mm)</translation>
    </message>
    <message>
        <source>表示色</source>
        <translation>Colours</translation>
    </message>
    <message>
        <source>低減ライン値</source>
        <translation>Reduction line</translation>
    </message>
    <message>
        <source>低減ライン値適用後</source>
        <translation>After reduction</translation>
    </message>
</context>
<context>
    <name>ImportWizard</name>
    <message>
        <source>カンマ</source>
        <translation>Comma</translation>
    </message>
    <message>
        <source>タブ</source>
        <translation>Tab</translation>
    </message>
    <message>
        <source>セミコロン</source>
        <translation>Semicolon</translation>
    </message>
    <message>
        <source>スペース</source>
        <translation>Space</translation>
    </message>
    <message>
        <source>その他</source>
        <translation>Other</translation>
    </message>
    <message>
        <source>テキスト ファイル ウィザード</source>
        <translation>Text File Wizard</translation>
    </message>
    <message>
        <source>ファイル：</source>
        <translation>File: </translation>
    </message>
    <message>
        <source>データのプレビュー</source>
        <translation>Data preview</translation>
    </message>
    <message>
        <source>初期化</source>
        <translation>Reset</translation>
    </message>
    <message>
        <source>キャンセル</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>完了</source>
        <translation>Finish</translation>
    </message>
    <message>
        <source>区切り文字</source>
        <translation>Delimiters</translation>
    </message>
    <message>
        <source>ERDファイルのヘッダー情報</source>
        <translation>ERD file header</translation>
    </message>
    <message>
        <source>１行目をヘッダーとして使用する</source>
        <translation>First line holds the headings</translation>
    </message>
    <message>
        <source>１行目のヘッダーをタイトルとして使用する</source>
        <translation>Headings become the titles</translation>
    </message>
    <message>
        <source>ピッチ</source>
        <translation>Pitch</translation>
    </message>
    <message>
        <source>データ開始行</source>
        <translation>Data rows</translation>
    </message>
    <message>
        <source>データ開始列</source>
        <translation>Data columns</translation>
    </message>
    <message>
        <source>省略時：1</source>
        <translation>Default: 1</translation>
    </message>
    <message>
        <source>戻る</source>
        <translation>Back</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>ERD追加</source>
        <translation>Add ERD</translation>
    </message>
    <message>
        <source>Go</source>
        <translation>Go</translation>
    </message>
    <message>
        <source>M波選択(検討対象)</source>
        <translation>M wave study</translation>
    </message>
    <message>
        <source>プロファイル</source>
        <translation>Profiles</translation>
    </message>
    <message>
        <source>ERD追加...</source>
        <translation>Add ERD...</translation>
    </message>
    <message>
        <source>テキストファイル取込...</source>
        <translation>Import Text File...</translation>
    </message>
    <message>
        <source>テキストファイル取込</source>
        <translation>Import Text File</translation>
    </message>
    <message>
        <source>テキストファイル (*.txt;*.csv)|*.txt;*.csv|すべてのファイル (*.*)|*.*</source>
        <translation>Text files (*.txt;*.csv)|*.txt;*.csv|All files (*.*)|*.*</translation>
    </message>
    <message>
        <source>計算条件の設定</source>
        <translation>Conditions</translation>
    </message>
    <message>
        <source>ツール</source>
        <translation>Tools</translation>
    </message>
    <message>
        <source>プロファイル合成</source>
        <translation>Composite Profile</translation>
    </message>
    <message>
        <source>プロファイル高さシフト</source>
        <translation>Shift Profile Height</translation>
    </message>
    <message>
        <source>プロファイル反転</source>
        <translation>Reverse Profile</translation>
    </message>
    <message>
        <source>プロファイル切り出し</source>
        <translation>Cut Out Profile</translation>
    </message>
    <message>
        <source>表示中のプロファイル：</source>
        <translation>Shown: </translation>
    </message>
    <message>
        <source>ERDファイル追加</source>
        <translation>Add ERD Files</translation>
    </message>
    <message>
        <source>ERDファイル (*.ERD)|*.ERD|テキストファイル (*.txt;*.csv)|*.txt;*.csv|すべてのファイル (*.*)|*.*</source>
        <translation>ERD files (*.ERD)|*.ERD|Text files (*.txt;*.csv)|*.txt;*.csv|All files (*.*)|*.*</translation>
    </message>
</context>
<context>
    <name>PrintTabPage</name>
    <message>
        <source>プリンターへ送る (lp)</source>
        <translation>Send to printer (lp)</translation>
    </message>
    <message>
        <source>プレビュー</source>
        <translation>Preview</translation>
    </message>
    <message>
        <source>印刷</source>
        <translation>Print</translation>
    </message>
    <message>
        <source>プリントオプション読込...</source>
        <translation>Load print options...</translation>
    </message>
    <message>
        <source>（既定値）</source>
        <translation>(default)</translation>
    </message>
    <message>
        <source>帳票</source>
        <translation>Form</translation>
    </message>
    <message>
        <source>用紙</source>
        <translation>Paper</translation>
    </message>
    <message>
        <source>|◀ 先頭</source>
        <translation>|◀ First</translation>
    </message>
    <message>
        <source>◀ 前</source>
        <translation>◀ Previous</translation>
    </message>
    <message>
        <source>次 ▶</source>
        <translation>Next ▶</translation>
    </message>
    <message>
        <source>最後 ▶|</source>
        <translation>Last ▶|</translation>
    </message>
    <message>
        <source>%1 / %2</source>
        <translation>%1 / %2</translation>
    </message>
    <message>
        <source>プリントオプション読込み</source>
        <translation>Load print options</translation>
    </message>
    <message>
        <source>プリントオプション (*.prt)|*.prt|</source>
        <translation>Print options (*.prt)|*.prt|</translation>
    </message>
    <message>
        <source>PDFファイル (*.pdf)|*.pdf|すべてのファイル (*.*)|*.*</source>
        <translation>PDF files (*.pdf)|*.pdf|All files (*.*)|*.*</translation>
    </message>
    <message>
        <source>印刷エラー</source>
        <translation>Print error</translation>
    </message>
    <message>
        <source>PDFファイルを保存しました。<byte value="xd"/>
<byte value="xd"/>
保存先：</source>
        <translation>The PDF file was saved.<byte value="xd"/>
<byte value="xd"/>
Saved to: </translation>
    </message>
    <message>
        <source><byte value="xd"/>
<byte value="xd"/>
PDFファイル：</source>
        <translation><byte value="xd"/>
<byte value="xd"/>
PDF file: </translation>
    </message>
    <message>
        <source>プリンターへ送りました。</source>
        <translation>Sent to the printer.</translation>
    </message>
    <message>
        <source>印刷キュー (lp) が見つかりません。</source>
        <translation>No print queue (lp) was found.</translation>
    </message>
    <message>
        <source>印刷キューがPDFを受け付けませんでした。</source>
        <translation>The print queue did not accept the PDF.</translation>
    </message>
</context>
<context>
    <name>ProfileEdits</name>
    <message>
        <source>プロファイル名称</source>
        <translation>Profile name</translation>
    </message>
    <message>
        <source>高さ名称</source>
        <translation>Elevation name</translation>
    </message>
    <message>
        <source>距離名称</source>
        <translation>Distance name</translation>
    </message>
    <message>
        <source>ピッチ</source>
        <translation>Pitch</translation>
    </message>
    <message>
        <source>始点 (KP)</source>
        <translation>Start (KP)</translation>
    </message>
    <message>
        <source>タイトル</source>
        <translation>Title</translation>
    </message>
    <message>
        <source>コメント</source>
        <translation>Comment</translation>
    </message>
    <message>
        <source>チャンネル数</source>
        <translation>Channels</translation>
    </message>
    <message>
        <source>データ件数</source>
        <translation>Samples</translation>
    </message>
    <message>
        <source>ヘッダー情報</source>
        <translation>Header</translation>
    </message>
    <message>
        <source>リネーム</source>
        <translation>Rename</translation>
    </message>
    <message>
        <source>登録解除</source>
        <translation>Remove</translation>
    </message>
    <message>
        <source>プロファイル緒元</source>
        <translation>Profile header</translation>
    </message>
    <message>
        <source>加算</source>
        <translation>Increasing</translation>
    </message>
    <message>
        <source>減算</source>
        <translation>Decreasing</translation>
    </message>
    <message>
        <source>上り</source>
        <translation>Up</translation>
    </message>
    <message>
        <source>下り</source>
        <translation>Down</translation>
    </message>
    <message>
        <source>なし</source>
        <translation>None</translation>
    </message>
    <message>
        <source>クリア</source>
        <translation>Clear</translation>
    </message>
    <message>
        <source>PMS追加</source>
        <translation>Add PMS</translation>
    </message>
    <message>
        <source>ﾌｧｲﾙ出力</source>
        <translation>Export</translation>
    </message>
</context>
<context>
    <name>ProfileTableModel</name>
    <message>
        <source>プロファイル</source>
        <translation>Profile</translation>
    </message>
    <message>
        <source>ピッチ (m)</source>
        <translation>Pitch (m)</translation>
    </message>
    <message>
        <source>データ数</source>
        <translation>Samples</translation>
    </message>
    <message>
        <source>延長 (m)</source>
        <translation>Length (m)</translation>
    </message>
</context>
<context>
    <name>ProjectMenu</name>
    <message>
        <source>新規作成</source>
        <translation>New</translation>
    </message>
    <message>
        <source>開く</source>
        <translation>Open</translation>
    </message>
    <message>
        <source>上書保存</source>
        <translation>Save</translation>
    </message>
    <message>
        <source>別名保存</source>
        <translation>Save As</translation>
    </message>
    <message>
        <source>リネーム</source>
        <translation>Rename</translation>
    </message>
    <message>
        <source>コピー</source>
        <translation>Copy</translation>
    </message>
    <message>
        <source>削除</source>
        <translation>Delete</translation>
    </message>
    <message>
        <source>終了</source>
        <translation>Exit</translation>
    </message>
    <message>
        <source>プロジェクト</source>
        <translation>Project</translation>
    </message>
    <message>
        <source>フィルター処理 (CSV)</source>
        <translation>Filters (CSV)</translation>
    </message>
    <message>
        <source>フィルター処理 (ERD)</source>
        <translation>Filters (ERD)</translation>
    </message>
    <message>
        <source>プロファイル分解 (CSV)</source>
        <translation>Octave Bands (CSV)</translation>
    </message>
    <message>
        <source>バンド別低減 (CSV)</source>
        <translation>Band Reduction (CSV)</translation>
    </message>
    <message>
        <source>IRI 全区間 (CSV)</source>
        <translation>IRI Whole Profile (CSV)</translation>
    </message>
    <message>
        <source>IRI 10m連続 (CSV)</source>
        <translation>IRI 10 m Continuous (CSV)</translation>
    </message>
    <message>
        <source>IRI 10m固定 (CSV)</source>
        <translation>IRI 10 m Sections (CSV)</translation>
    </message>
    <message>
        <source>IRI 100m固定 (CSV)</source>
        <translation>IRI 100 m Sections (CSV)</translation>
    </message>
    <message>
        <source>IRI 200m固定 (CSV)</source>
        <translation>IRI 200 m Sections (CSV)</translation>
    </message>
    <message>
        <source>ファイル出力</source>
        <translation>Export</translation>
    </message>
</context>
<context>
    <name>QtInteraction</name>
    <message>
        <source>キャンセル</source>
        <translation>Cancel</translation>
    </message>
</context>
<context>
    <name>ReportTabPage</name>
    <message>
        <source>テンプレート読込...</source>
        <translation>Load template...</translation>
    </message>
    <message>
        <source>パラメータ</source>
        <translation>Parameter</translation>
    </message>
    <message>
        <source>値</source>
        <translation>Value</translation>
    </message>
    <message>
        <source>位置を反転して出力する</source>
        <translation>Write positions reversed</translation>
    </message>
    <message>
        <source>エクセル出力</source>
        <translation>Write workbook</translation>
    </message>
    <message>
        <source>帳票出力</source>
        <translation>Reports</translation>
    </message>
    <message>
        <source>出力対象のエクセルファイルが指定されていません。</source>
        <translation>No workbook to write is given.</translation>
    </message>
    <message>
        <source>警告</source>
        <translation>Warning</translation>
    </message>
    <message>
        <source>エクセル出力先フォルダ</source>
        <translation>Folder for the workbook</translation>
    </message>
</context>
<context>
    <name>StatisticsTabPage</name>
    <message>
        <source>実行</source>
        <translation>Go</translation>
    </message>
    <message>
        <source>保存</source>
        <translation>Save</translation>
    </message>
    <message>
        <source>統計値</source>
        <translation>Statistics</translation>
    </message>
    <message>
        <source>表示指定</source>
        <translation>Show</translation>
    </message>
    <message>
        <source>平均</source>
        <translation>Mean</translation>
    </message>
    <message>
        <source>分散(σ)</source>
        <translation>Deviation (σ)</translation>
    </message>
    <message>
        <source>最大</source>
        <translation>Maximum</translation>
    </message>
    <message>
        <source>最小</source>
        <translation>Minimum</translation>
    </message>
    <message>
        <source>IRI</source>
        <translation>IRI</translation>
    </message>
    <message>
        <source>リストでプロファイルを選択してください。</source>
        <translation>Choose profiles in the list.</translation>
    </message>
    <message>
        <source>全区間または区間集計のページ（プロファイル）を選ぶと図が出ます。</source>
        <translation>Choose a whole-length or section page (profile) to see its chart.</translation>
    </message>
    <message>
        <source>結果がありません。実行を押してください。</source>
        <translation>No results yet: press Go.</translation>
    </message>
    <message>
        <source>プロファイル</source>
        <translation>Profile</translation>
    </message>
    <message>
        <source>帯域</source>
        <translation>Bands</translation>
    </message>
    <message>
        <source>並び順</source>
        <translation>Order</translation>
    </message>
    <message>
        <source>IRI算出基準長</source>
        <translation>IRI base lengths</translation>
    </message>
</context>
<context>
    <name>TabInputs</name>
    <message>
        <source>移動平均</source>
        <translation>Moving average</translation>
    </message>
    <message>
        <source>フーリエ変換</source>
        <translation>FFT</translation>
    </message>
    <message>
        <source>計算種別</source>
        <translation>Filter</translation>
    </message>
    <message>
        <source>帯域</source>
        <translation>Band</translation>
    </message>
    <message>
        <source>長波長側 (m)</source>
        <translation>Long cut-off (m)</translation>
    </message>
    <message>
        <source>短波長側 (m)</source>
        <translation>Short cut-off (m)</translation>
    </message>
    <message>
        <source>FFT収束演算</source>
        <translation>Convergent FFT</translation>
    </message>
    <message>
        <source>評価長 (m)</source>
        <translation>Evaluation length (m)</translation>
    </message>
    <message>
        <source>%1 の値は数値ではありません。低減ラインなしとして計算されます。</source>
        <translation>%1: not a number, computed as no reduction line.</translation>
    </message>
    <message>
        <source>、</source>
        <translation>, </translation>
    </message>
    <message>
        <source>長波側境界値 (m)</source>
        <translation>Long-wave boundary (m)</translation>
    </message>
    <message>
        <source>短波側境界値 (m)</source>
        <translation>Short-wave boundary (m)</translation>
    </message>
    <message>
        <source>IRI算出基準長 (m)</source>
        <translation>IRI base length (m)</translation>
    </message>
    <message>
        <source>補修計画範囲</source>
        <translation>Repair plan range</translation>
    </message>
    <message>
        <source>低減ライン (mm)</source>
        <translation>Reduction lines (mm)</translation>
    </message>
    <message>
        <source>短波長 低減ライン (mm)</source>
        <translation>S wave reduction lines (mm)</translation>
    </message>
</context>
<context>
    <name>TabPage</name>
    <message>
        <source>フィルター処理</source>
        <translation>Filters</translation>
    </message>
    <message>
        <source>プロファイル分解</source>
        <translation>Octave Bands</translation>
    </message>
    <message>
        <source>バンド別低減</source>
        <translation>Band Reduction</translation>
    </message>
    <message>
        <source>PSD</source>
        <translation>PSD</translation>
    </message>
    <message>
        <source>IRI</source>
        <translation>IRI</translation>
    </message>
    <message>
        <source>精度検証</source>
        <translation>Verification</translation>
    </message>
    <message>
        <source>3波長分解</source>
        <translation>Three Waves</translation>
    </message>
    <message>
        <source>中波長</source>
        <translation>M Wave</translation>
    </message>
    <message>
        <source>短波長</source>
        <translation>S Wave</translation>
    </message>
    <message>
        <source>理想形状</source>
        <translation>Ideal Shape</translation>
    </message>
    <message>
        <source>プロファイル</source>
        <translation>Profiles</translation>
    </message>
    <message>
        <source>リストでプロファイルを選択してください。</source>
        <translation>Select profiles in the list.</translation>
    </message>
    <message>
        <source>結果がありません。Go を押してください。</source>
        <translation>No results yet: press Go.</translation>
    </message>
</context>
<context>
    <name>ToolDialog</name>
    <message>
        <source>選択したプロファイルの始点と終点を入れ替えます。</source>
        <translation>Swaps the start and the end of the selected profiles.</translation>
    </message>
    <message>
        <source>プロファイルの反転</source>
        <translation>Reverse Profile</translation>
    </message>
    <message>
        <source>始点</source>
        <translation>Start</translation>
    </message>
    <message>
        <source>終点</source>
        <translation>End</translation>
    </message>
    <message>
        <source>指定KP</source>
        <translation>At KP</translation>
    </message>
    <message>
        <source>調整位置</source>
        <translation>Reference</translation>
    </message>
    <message>
        <source>調整高さ (mm)</source>
        <translation>Height shift (mm)</translation>
    </message>
    <message>
        <source>プロファイルの高さシフト</source>
        <translation>Shift Profile Height</translation>
    </message>
    <message>
        <source>KP指定</source>
        <translation>By KP</translation>
    </message>
    <message>
        <source>データ指定</source>
        <translation>By samples</translation>
    </message>
    <message>
        <source>KP始点 (km)</source>
        <translation>KP start (km)</translation>
    </message>
    <message>
        <source>KP終点 (km)</source>
        <translation>KP end (km)</translation>
    </message>
    <message>
        <source>開始位置</source>
        <translation>Start</translation>
    </message>
    <message>
        <source>個</source>
        <translation>samples</translation>
    </message>
    <message>
        <source>長さ</source>
        <translation>Length</translation>
    </message>
    <message>
        <source>不足データ処理</source>
        <translation>Beyond the profile</translation>
    </message>
    <message>
        <source>行わない</source>
        <translation>Nothing</translation>
    </message>
    <message>
        <source>ゼロ埋め</source>
        <translation>Zeros</translation>
    </message>
    <message>
        <source>始めまたは、終りの値</source>
        <translation>End value</translation>
    </message>
    <message>
        <source>反転折り返し</source>
        <translation>Mirrored</translation>
    </message>
    <message>
        <source>※データ反転はされません。</source>
        <translation>* The profiles are not reversed.</translation>
    </message>
    <message>
        <source>プロファイル切出し</source>
        <translation>Cut Out Profile</translation>
    </message>
    <message>
        <source>基準プロファイル</source>
        <translation>Base profile</translation>
    </message>
    <message>
        <source>参照</source>
        <translation>Browse...</translation>
    </message>
    <message>
        <source>先頭行をデータの見出しとして使用する</source>
        <translation>First line holds the headings</translation>
    </message>
    <message>
        <source>位置の単位</source>
        <translation>Position unit</translation>
    </message>
    <message>
        <source>CSVファイル</source>
        <translation>CSV File</translation>
    </message>
    <message>
        <source>ログ・ファイル (*.csv)|*.csv|CSVファイル (*.csv)|*.csv|すべてのファイル (*.*)|*.*</source>
        <translation>Log files (*.csv)|*.csv|CSV files (*.csv)|*.csv|All files (*.*)|*.*</translation>
    </message>
    <message>
        <source>出力単位</source>
        <translation>Output pitch</translation>
    </message>
    <message>
        <source>基準</source>
        <translation>Base</translation>
    </message>
    <message>
        <source>対象</source>
        <translation>Target</translation>
    </message>
    <message>
        <source>プロファイル合成</source>
        <translation>Composite Profile</translation>
    </message>
    <message>
        <source>登録</source>
        <translation>Register</translation>
    </message>
    <message>
        <source>閉じる</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>プロファイル</source>
        <translation>Profiles</translation>
    </message>
</context>
</TS>
